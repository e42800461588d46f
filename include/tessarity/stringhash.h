#ifndef TESSARITY_STRINGHASH_H
#define TESSARITY_STRINGHASH_H

#include <tessarity/export.h>

#include <cstddef>
#include <iosfwd>
#include <string>

#include <boost/shared_ptr.hpp>

namespace Tessarity {

// A name with its hash computed once, so that the pull protocol compares and keys maps by an
// integer. Copies share the text. Equality is by hash alone: equal hashes are one name.
class TESSARITY_EXPORT StringHash {
public:
    StringHash();
    StringHash(const std::string& value);
    StringHash(const char* value);  // null gives the empty name

    const std::string& getText() const { return *text; }
    unsigned long getHash() const { return hash; }

    bool operator==(const StringHash& other) const { return hash == other.hash; }
    bool operator!=(const StringHash& other) const { return hash != other.hash; }

    // The range form of boost::hash_combine over the bytes, taken as signed chars. Requests
    // and process names are matched by this value, so it must stay bit-exact.
    static unsigned long computeHash(const char* bytes, std::size_t size) {
        unsigned long seed = 0;
        for (std::size_t i = 0; i < size; ++i) {
            const unsigned long c = static_cast<unsigned long>(static_cast<signed char>(bytes[i]));
            seed ^= c + 0x9e3779b9UL + (seed << 6) + (seed >> 2);
        }
        return seed;
    }
    static unsigned long computeHash(const std::string& text) {
        return computeHash(text.data(), text.size());
    }

    boost::shared_ptr<std::string> text;
    unsigned long hash;
};

// Writes the text only; log messages of the graph rely on it.
TESSARITY_EXPORT std::ostream& operator<<(std::ostream& stream, const StringHash& name);

}  // namespace Tessarity

#endif
