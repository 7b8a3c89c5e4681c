#include "simulator/cli/screen.h"

#include "simulator/cli/text_width.h"

#include <cstdlib>
#include <cstring>
#include <sys/ioctl.h>
#include <unistd.h>

namespace sim::cli {
namespace {

constexpr unsigned short kUsualWidth = 80;
constexpr unsigned short kUsualHeight = 24;

winsize SizeOf(int descriptor) {
    winsize size{};
    if (ioctl(descriptor, TIOCGWINSZ, &size) != 0)
        size = {};
    if (size.ws_col == 0)
        size.ws_col = kUsualWidth;
    if (size.ws_row == 0)
        size.ws_row = kUsualHeight;
    return size;
}

bool IsDumb() {
    const char *terminal = std::getenv("TERM");
    return terminal && std::strcmp(terminal, "dumb") == 0;
}

bool WantsColours() {
    const char *refusal = std::getenv("NO_COLOR");
    return !(refusal && *refusal) && !IsDumb();
}

const char *CodeOf(Style style) {
    switch (style) {
    case Style::kBold:
        return "\x1b[1m";
    case Style::kDim:
        return "\x1b[2m";
    case Style::kRed:
        return "\x1b[31m";
    case Style::kGreen:
        return "\x1b[32m";
    case Style::kYellow:
        return "\x1b[33m";
    case Style::kCyan:
        return "\x1b[36m";
    case Style::kPlain:
        break;
    }
    return "";
}

} // namespace

Screen Screen::Of(std::FILE *file) {
    const int descriptor = fileno(file);
    const bool isTerminal = isatty(descriptor);
    if (!isTerminal)
        return {file, false, false, kUsualWidth, kUsualHeight};
    const winsize size = SizeOf(descriptor);
    return {file, true, WantsColours(), size.ws_col, size.ws_row, !IsDumb()};
}

std::string Screen::Styled(const std::string &text, Style style) const {
    if (!hasColours_ || style == Style::kPlain || text.empty())
        return text;
    return CodeOf(style) + text + "\x1b[0m";
}

std::string Screen::FittedBehind(size_t columns, const std::string &text) const {
    return isTerminal_ ? Fitted(text, columns < width_ ? width_ - columns : 0, Cut::kMiddle) : text;
}

void Screen::Line(const std::string &text) const { Write(text + "\n"); }

void Screen::Write(const std::string &text) const {
    std::fwrite(text.data(), 1, text.size(), file_);
    std::fflush(file_);
}

bool Screen::IsWell() const { return !std::ferror(file_); }

Output Output::For(std::optional<Format> format) {
    const Screen results = Screen::Of(stdout);
    if (!format)
        format = results.IsTerminal() ? Format::kColumns : Format::kTSV;
    return {results, *format == Format::kColumns ? results : Screen::Of(stderr), *format};
}

} // namespace sim::cli
