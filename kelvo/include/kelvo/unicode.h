#ifndef KELVO_UNICODE_H
#define KELVO_UNICODE_H

#include <cwchar>
#include <locale>

namespace kelvo {

// UTF-8 conversion between narrow and wide paths, in the form boost::filesystem::path takes.
const std::codecvt<wchar_t, char, std::mbstate_t>& unicodeFacet();

}  // namespace kelvo

#endif
