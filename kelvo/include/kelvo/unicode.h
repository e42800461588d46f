#ifndef KELVO_UNICODE_H
#define KELVO_UNICODE_H

#include <kelvo/export.h>

#include <cwchar>
#include <locale>

namespace kelvo {

// UTF-8 conversion between narrow and wide paths, in the form boost::filesystem::path takes.
KELVO_EXPORT const std::codecvt<wchar_t, char, std::mbstate_t>& unicodeFacet();

}  // namespace kelvo

#endif
