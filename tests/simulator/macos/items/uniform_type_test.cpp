// The list of content types by itself.
#include "simulator/macos/CoreServices/metadata/items/uniform_type.h"
#include "simulator/macos/CoreServices/metadata/items/uniform_type_table.h"
#include "simulator/macos/CoreServices/metadata/items/words.h"

#include <doctest/doctest.h>

#include <set>
#include <string>

namespace sim::macos {

namespace {

std::string Tree(std::string_view identifier) {
    std::string tree;
    for (std::string_view type : ConformanceTree(UniformTypeNamed(identifier)))
        tree.append(tree.empty() ? "" : " ").append(type);
    return tree;
}

std::string_view UniformTypeOf(std::string_view extension, bool isFolder = false) {
    const UniformType *type = UniformTypeForExtension(extension, isFolder);
    return type ? type->identifier : "";
}

} // namespace

TEST_CASE("a type conforms to itself and to all that its parents conform to, the nearest first and each once") {
    CHECK(Tree("public.png") == "public.png public.image public.data public.item public.content");
    CHECK(Tree("public.plain-text") == "public.plain-text public.text public.data public.item public.content");
    CHECK(Tree("com.adobe.pdf") == "com.adobe.pdf public.data public.item public.composite-content public.content");
    CHECK(Tree("public.folder") == "public.folder public.directory public.item");
    CHECK(Tree("public.python-script") == "public.python-script public.script public.source-code public.plain-text "
                                          "public.text public.data public.item public.content");
    CHECK(ConformsTo(UniformTypeNamed("public.jpeg"), "public.content"));
    CHECK_FALSE(ConformsTo(UniformTypeNamed("public.jpeg"), "public.text"));
}

TEST_CASE("an extension counts in any case, and a package's only for a folder") {
    CHECK(UniformTypeOf("png") == "public.png");
    CHECK(UniformTypeOf("JPEG") == "public.jpeg");
    CHECK(UniformTypeOf("Txt") == "public.plain-text");
    CHECK(UniformTypeOf("app", true) == "com.apple.application-bundle");
    CHECK(UniformTypeOf("app") == "");
    CHECK(UniformTypeOf("png", true) == "");
    CHECK(UniformTypeOf("") == "");
    CHECK(UniformTypeOf("unheard-of") == "");
}

TEST_CASE("the list names each type and each extension once, and parents before what conforms to them") {
    std::set<std::string_view> identifiers, extensions;
    for (const UniformType &type : kUniformTypes) {
        CAPTURE(type.identifier);
        for (std::string_view parent : Words(type.conformsTo, ' '))
            CHECK(identifiers.contains(parent));
        CHECK(identifiers.insert(type.identifier).second);
        CHECK_FALSE((type.kind.empty() && !type.extensions.empty()));
        for (std::string_view extension : Words(type.extensions, ' ')) {
            CHECK(extensions.insert(extension).second);
            CHECK(LowerCaseASCII(extension) == extension);
        }
    }
}

TEST_CASE("words are cut at the separator, without blanks around them and without empty ones") {
    CHECK(Words("a, b c ,,d", ',') == std::vector<std::string_view>{"a", "b c", "d"});
    CHECK(Words(" ,\t", ',').empty());
    CHECK(Words("", ',').empty());
}

} // namespace sim::macos
