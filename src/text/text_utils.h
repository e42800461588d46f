#ifndef TESSARITY_TEXT_TEXT_UTILS_H
#define TESSARITY_TEXT_TEXT_UTILS_H

#include <list>
#include <string>
#include <utility>
#include <vector>

#include <boost/shared_ptr.hpp>

#include <tessarity/data.h>

namespace Tessarity {

// The lexer of the program language and the parser of literal values. All of
// these are pure and work on bytes: a byte at or above 0x80 is never a digit, a letter or
// white space. Their edges define what the language accepts, odd ones included.

// Drops each `comment` byte and everything after it up to and including the next line feed
// or carriage return (or to the end). Knows nothing of string literals.
std::string removeComments(char comment, const std::string& text);

// `text` points at an opening double quote. Returns the first double quote behind it that
// is not escaped by a backslash, or the terminating zero byte if there is none.
const char* skipString(const char* text);

// Removes tab, line feed, carriage return and space from both ends; nothing else.
std::string trimString(const std::string& text);

// Cuts `text` into the texts between blocks and the contents of blocks, in order, trimmed.
// Quoted literals are copied whole; nested blocks stay inside their outer block's item.
std::list<std::string> blockString(char open, char close, const std::string& text);

// Cuts `text` at each `separator` outside a quoted literal; items are trimmed.
std::list<std::string> listString(char separator, const std::string& text);

// Splits at the first occurrence of `separator` (quotes are not honoured); both trimmed.
std::pair<std::string, std::string> splitString(const std::string& separator,
                                                const std::string& text);

// Cuts at each space (0x20) only and drops the empty pieces.
std::vector<std::string> splitSpace(const std::string& text);

bool isBool(const std::string& text);
bool isInteger(const std::string& text);
bool isFloat(const std::string& text);
bool isString(const std::string& text);

bool toBool(const std::string& text);
int toInteger(const std::string& text);  // 32-bit, wraps
float toFloat(const std::string& text);  // single-precision arithmetic
std::string toString(const std::string& text);

// The value of a literal by the first form its text takes: bool, int, float, then string.
// Null for a text of none of these forms.
boost::shared_ptr<Data> literalData(const std::string& text);

}  // namespace Tessarity

#endif
