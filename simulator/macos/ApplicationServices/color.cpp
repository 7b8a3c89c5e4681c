// Colours of the generic RGB space, with the components they were made of.
#include "simulator/macos/ApplicationServices/colors.h"
#include "simulator/macos/CoreFoundation/object.h"
#include "simulator/macos/control/faults.h"

namespace sim::macos {

namespace {

FallibleCall createGenericRgb("CGColorCreateGenericRGB");

class Color final : public Object {
public:
    explicit Color(std::array<CGFloat, 4> components) : components_(components) {}

    CFTypeID TypeID() const override { return CGColorGetTypeID(); }
    bool EqualTo(const Object &other) const override {
        const auto *color = dynamic_cast<const Color *>(&other);
        return color && color->components_ == components_;
    }
    CFHashCode Hash() const override { return static_cast<CFHashCode>(255 * components_[0]); }
    std::string Description() const override {
        return std::to_string(components_[0]) + " " + std::to_string(components_[1]) + " " +
               std::to_string(components_[2]) + " " + std::to_string(components_[3]);
    }

    const std::array<CGFloat, 4> &Components() const { return components_; }

private:
    std::array<CGFloat, 4> components_;
};

} // namespace

std::array<CGFloat, 4> ComponentsOf(CGColorRef color) { return Expect<Color>(color).Components(); }

} // namespace sim::macos

using namespace sim::macos;

CGColorRef CGColorCreateGenericRGB(CGFloat red, CGFloat green, CGFloat blue, CGFloat alpha) {
    if (createGenericRgb.Fails())
        return nullptr;
    return (new Color({red, green, blue, alpha}))->As<CGColorRef>();
}
