#include "text/text_utils.h"

#include <boost/make_shared.hpp>

#include <cstdint>
#include <cstring>
#include <limits>

namespace Tessarity {

namespace {

// Locale-free byte classes: a byte at or above 0x80 is none of these.
inline bool isDigitByte(char c) { return c >= '0' && c <= '9'; }

inline bool isBlankByte(char c) { return c == '\t' || c == '\n' || c == '\r' || c == ' '; }

inline bool isLineEnd(char c) { return c == '\n' || c == '\r'; }

// The value of a hexadecimal digit, or -1.
inline int hexValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// Two's complement reading of a 32-bit pattern, without implementation-defined casts.
inline int toSigned32(std::uint32_t value) {
    std::int32_t result;
    std::memcpy(&result, &value, sizeof result);
    return result;
}

// Copies the literal that starts at the double quote `text[i]` to `buffer`, both quotes
// included, and returns the index behind it. A literal with no closing quote ends at the
// terminating zero byte, which is copied too; the index returned is then past the end.
std::size_t copyLiteral(const std::string& text, std::size_t i, std::string& buffer) {
    const char* begin = text.c_str();
    std::size_t end = static_cast<std::size_t>(skipString(begin + i) - begin);
    // c_str() guarantees text[text.size()] is a zero byte, so [i, end] is readable.
    buffer.append(begin + i, end - i + 1);
    return end + 1;
}

}  // namespace

std::string removeComments(char comment, const std::string& text) {
    std::string result;
    result.reserve(text.size());
    const std::size_t size = text.size();
    for (std::size_t i = 0; i < size; ++i) {
        if (text[i] != comment) {
            result += text[i];
            continue;
        }
        // The comment runs from its own byte to the first line end, which goes with it. A
        // comment byte that is itself a line end is therefore dropped alone.
        while (i < size && !isLineEnd(text[i])) ++i;
    }
    return result;
}

const char* skipString(const char* text) {
    if (*text == '\0') return text;  // no opening quote to step over
    const char* p = text + 1;
    while (*p != '\0' && *p != '"') {
        if (*p == '\\') {
            ++p;
            if (*p == '\0') break;  // a backslash cannot escape the end of the text
        }
        ++p;
    }
    return p;
}

std::string trimString(const std::string& text) {
    std::size_t begin = 0;
    std::size_t end = text.size();
    while (begin < end && isBlankByte(text[begin])) ++begin;
    while (end > begin && isBlankByte(text[end - 1])) --end;
    return text.substr(begin, end - begin);
}

std::list<std::string> blockString(char open, char close, const std::string& text) {
    std::list<std::string> result;
    std::string buffer;
    bool inBlock = false;
    int depth = 0;
    std::size_t i = 0;
    const std::size_t size = text.size();
    while (i < size) {
        const char c = text[i];
        if (c == '"') {
            i = copyLiteral(text, i, buffer);
            continue;
        }
        if (!inBlock) {
            if (c == open) {
                // Tested before trimming: a blank text between blocks gives an empty item.
                if (!buffer.empty()) result.push_back(trimString(buffer));
                buffer.clear();
                inBlock = true;
            } else {
                buffer += c;
            }
        } else if (c == open) {
            buffer += c;
            ++depth;
        } else if (c == close) {
            if (depth == 0) {
                // An empty block always yields an item.
                result.push_back(trimString(buffer));
                buffer.clear();
                inBlock = false;
            } else {
                buffer += c;
                --depth;
            }
        } else {
            buffer += c;
        }
        ++i;
    }
    if (!buffer.empty()) result.push_back(trimString(buffer));
    return result;
}

std::list<std::string> listString(char separator, const std::string& text) {
    std::list<std::string> result;
    std::string buffer;
    std::size_t i = 0;
    const std::size_t size = text.size();
    while (i < size) {
        const char c = text[i];
        if (c == '"') {
            i = copyLiteral(text, i, buffer);
            continue;
        }
        if (c == separator) {
            // Tested before trimming: adjacent separators give nothing, a blank gives "".
            if (!buffer.empty()) result.push_back(trimString(buffer));
            buffer.clear();
        } else {
            buffer += c;
        }
        ++i;
    }
    if (!buffer.empty()) result.push_back(trimString(buffer));
    return result;
}

std::pair<std::string, std::string> splitString(const std::string& separator,
                                                const std::string& text) {
    const std::size_t at = text.find(separator);  // an empty separator is found at 0
    if (at == std::string::npos) return std::make_pair(trimString(text), std::string());
    return std::make_pair(trimString(text.substr(0, at)),
                          trimString(text.substr(at + separator.size())));
}

std::vector<std::string> splitSpace(const std::string& text) {
    std::vector<std::string> result;
    std::string piece;
    for (char c : text) {
        if (c == ' ') {
            if (!piece.empty()) result.push_back(piece);
            piece.clear();
        } else {
            piece += c;
        }
    }
    if (!piece.empty()) result.push_back(piece);
    return result;
}

bool isBool(const std::string& text) { return text == "true" || text == "false"; }

bool toBool(const std::string& text) { return text == "true"; }

bool isInteger(const std::string& text) {
    if (text.empty()) return true;
    // The hexadecimal form is never accepted: its digit scan would stop at the "x".
    if (text.size() >= 3 && text[0] == '0' && text[1] == 'x') return false;
    std::size_t i = 0;
    if (text.size() >= 2 && text[0] == '-') i = 1;
    for (; i < text.size(); ++i) {
        if (!isDigitByte(text[i])) return false;
    }
    return true;
}

int toInteger(const std::string& text) {
    if (text.empty()) return 0;
    // Unsigned arithmetic gives the 32-bit wrapping without signed overflow.
    std::uint32_t value = 0;
    if (text.size() >= 3 && text[0] == '0' && text[1] == 'x') {
        for (char c : text) {
            const int digit = hexValue(c);
            value = value * 16u + static_cast<std::uint32_t>(digit < 0 ? 0 : digit);
        }
        return toSigned32(value);
    }
    std::size_t i = 0;
    bool negative = false;
    if (text.size() >= 2 && text[0] == '-') {
        negative = true;
        i = 1;
    }
    for (; i < text.size(); ++i) {
        const char c = text[i];
        value = value * 10u + static_cast<std::uint32_t>(isDigitByte(c) ? c - '0' : 0);
    }
    if (negative) value = 0u - value;
    return toSigned32(value);
}

bool isFloat(const std::string& text) {
    if (text == "infinity") return true;
    if (text.empty()) return true;
    std::size_t i = 0;
    const std::size_t size = text.size();
    if (size >= 2 && text[0] == '-') i = 1;
    while (i < size && isDigitByte(text[i])) ++i;
    if (i == size) return true;
    if (text[i] != '.') return false;
    for (++i; i < size; ++i) {
        if (!isDigitByte(text[i])) return false;
    }
    return true;
}

float toFloat(const std::string& text) {
    if (text == "infinity") return std::numeric_limits<float>::infinity();
    if (text.empty()) return 0.0f;
    const std::size_t size = text.size();
    std::size_t i = 0;
    float sign = 1.0f;
    if (size >= 2 && text[0] == '-') {
        sign = -1.0f;
        i = 1;
    }
    // Every step in single precision: this fixes the rounding of the result.
    float value = 0.0f;
    for (; i < size && text[i] != '.'; ++i) {
        if (isDigitByte(text[i])) value = value * 10.0f + static_cast<float>(text[i] - '0');
    }
    if (i < size) {  // behind the "."
        float scale = 1.0f;
        for (++i; i < size; ++i) {
            if (!isDigitByte(text[i])) continue;
            scale = scale * 10.0f;
            value = value + static_cast<float>(text[i] - '0') / scale;
        }
    }
    return sign * value;
}

bool isString(const std::string& text) {
    const std::string trimmed = trimString(text);
    return !trimmed.empty() && trimmed.front() == '"' && trimmed.back() == '"';
}

std::string toString(const std::string& text) {
    const std::size_t n = text.size();  // the argument's length, not the trimmed copy's
    if (n < 3) return std::string();
    const std::string copy = trimString(text);
    // Read n - 2 bytes from the copy's second byte, bounded by the end of the copy (only a
    // text with white space around it makes the copy shorter; no caller passes one).
    std::size_t end = n - 1;
    if (end > copy.size()) end = copy.size();
    std::string result;
    result.reserve(n - 2);
    bool escaped = false;
    for (std::size_t i = 1; i < end; ++i) {
        char c = copy[i];
        if (escaped) {
            escaped = false;
            switch (c) {
                case 'n':
                    c = '\n';
                    break;
                case 'r':
                    c = '\r';
                    break;
                case 't':
                    c = '\t';
                    break;
                case '0':
                    c = '\0';
                    break;
                default:
                    break;
            }
            result += c;
        } else if (c == '\\') {
            escaped = true;  // a backslash that is the last byte read changes nothing
        } else {
            result += c;
        }
    }
    return result;
}

boost::shared_ptr<Data> literalData(const std::string& text) {
    if (isBool(text)) return boost::make_shared<Data>(toBool(text));
    if (isInteger(text)) return boost::make_shared<Data>(toInteger(text));
    if (isFloat(text)) return boost::make_shared<Data>(toFloat(text));
    if (isString(text)) return boost::make_shared<Data>(toString(text));
    return boost::shared_ptr<Data>();
}

}  // namespace Tessarity
