#include <tessarity/stringhash.h>

#include <ostream>

#include <boost/make_shared.hpp>

namespace Tessarity {

static_assert(sizeof(unsigned long) == 8, "StringHash needs a 64-bit unsigned long");

namespace {
// Every empty name shares one text, so that an empty name costs no allocation.
const boost::shared_ptr<std::string>& emptyText() {
    static const boost::shared_ptr<std::string> empty = boost::make_shared<std::string>();
    return empty;
}
}  // namespace

StringHash::StringHash() : text(emptyText()), hash(0) {}

StringHash::StringHash(const std::string& value)
    : text(boost::make_shared<std::string>(value)), hash(computeHash(value)) {}

StringHash::StringHash(const char* value)
    : text(value ? boost::make_shared<std::string>(value) : boost::make_shared<std::string>()),
      hash(computeHash(*text)) {}

std::ostream& operator<<(std::ostream& stream, const StringHash& name) {
    return stream << *name.text;
}

}  // namespace Tessarity
