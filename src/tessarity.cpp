#include <tessarity/tessarity.h>

#include <boost/make_shared.hpp>

#include "tessarity_p.h"

namespace Tessarity {

Tessarity::Tessarity(unsigned int threadCount)
    : _d(boost::make_shared<TessarityPrivate>(threadCount)) {}

std::vector<std::string> Tessarity::getSources() const { return _d->getSources(); }

bool Tessarity::createSource(const std::string& name) { return _d->createSource(name); }

void Tessarity::setData(const std::string& source, boost::shared_ptr<Data> data) {
    _d->setData(source, data);
}

boost::shared_ptr<Data> Tessarity::getSourceData(const std::string& source,
                                                 const Type::Duration& tolerance) const {
    return _d->getSourceData(source, tolerance);
}

boost::shared_ptr<Data> Tessarity::getSourceData(const std::string& source, const Type::Time& time,
                                                 const Type::Duration& tolerance) const {
    return _d->getSourceData(source, time, tolerance);
}

bool Tessarity::deleteSource(const std::string& name) { return _d->deleteSource(name); }

void Tessarity::startScheduler() { _d->startScheduler(); }

void Tessarity::stopScheduler() { _d->stopScheduler(); }

}  // namespace Tessarity
