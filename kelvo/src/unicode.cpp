#include "kelvo/unicode.h"

#include <codecvt>

namespace kelvo {

const std::codecvt<wchar_t, char, std::mbstate_t>& unicodeFacet() {
    // The facet is never installed in a locale that would delete it.
    static std::codecvt_utf8<wchar_t>* facet = new std::codecvt_utf8<wchar_t>(1);
    return *facet;
}

}  // namespace kelvo
