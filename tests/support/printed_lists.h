// What a failed check prints of lists.
#pragma once

#include <doctest/doctest.h>

#include <vector>

namespace doctest {

template <class Element> struct StringMaker<std::vector<Element>> {
    static String convert(const std::vector<Element> &elements) {
        String text = "{";
        for (const Element &element : elements)
            text += String(" ") + toString(element);
        return text + " }";
    }
};

} // namespace doctest
