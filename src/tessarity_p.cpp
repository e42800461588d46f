#include "tessarity_p.h"

#include <stdexcept>

#include <boost/make_shared.hpp>

#include "filter.h"
#include "logging.h"
#include "nodesource.h"
#include "scheduler.h"

namespace Tessarity {

namespace {
const char* const kLogCategory = "tessarity.private";
const char* const kLogFile = "src/tessarity_p";
}  // namespace

// Logs an error line and throws it as std::invalid_argument, for the operations that throw.
#define TES_THROW(expr)                                     \
    do {                                                    \
        std::ostringstream tesThrowStream_;                 \
        tesThrowStream_ << expr;                            \
        TES_LOG(kelvo::log::Error, tesThrowStream_.str());  \
        throw std::invalid_argument(tesThrowStream_.str()); \
    } while (0)

TessarityPrivate::TessarityPrivate(unsigned int threadCount) {
    _scheduler = boost::make_shared<Scheduler>(this, threadCount);
    _scheduler->start();
}

TessarityPrivate::~TessarityPrivate() {
    // No worker may touch a registry that is being destroyed.
    _scheduler->stop();
}

boost::shared_ptr<NodeSource> TessarityPrivate::_findSource(const std::string& name) const {
    auto source = _sources.find(name);
    return source == _sources.end() ? boost::shared_ptr<NodeSource>() : source->second;
}

std::vector<std::string> TessarityPrivate::getSources() const {
    boost::mutex::scoped_lock lock(_sourcesMutex);
    std::vector<std::string> names;
    names.reserve(_sources.size());
    for (const auto& source : _sources) names.push_back(source.first);
    return names;
}

bool TessarityPrivate::createSource(const std::string& name) {
    {
        boost::mutex::scoped_lock lock(_sourcesMutex);
        if (_sources.find(name) == _sources.end()) {
            _sources.emplace(name, boost::make_shared<NodeSource>(name));
            return true;
        }
    }
    TES_LOG(kelvo::log::Error, "createSource(\"" << name << "\"): source already exists.");
    return false;
}

void TessarityPrivate::setData(const std::string& source, boost::shared_ptr<Data> data) {
    boost::shared_ptr<NodeSource> node;
    {
        boost::mutex::scoped_lock lock(_sourcesMutex);
        node = _findSource(source);
    }
    if (!node) TES_THROW("Can't set data for source \"" << source << "\": source unknown.");
    // Called without the registry lock: the source raises its events here, and a callback
    // may come back into the engine.
    node->setData(data);
}

boost::shared_ptr<Data> TessarityPrivate::getSourceData(const std::string& source,
                                                        const Type::Duration& tolerance) const {
    return getSourceData(source, Type::Time::now(), tolerance);
}

boost::shared_ptr<Data> TessarityPrivate::getSourceData(const std::string& source,
                                                        const Type::Time& time,
                                                        const Type::Duration& tolerance) const {
    boost::shared_ptr<NodeSource> node;
    {
        boost::mutex::scoped_lock lock(_sourcesMutex);
        node = _findSource(source);
    }
    if (!node) TES_THROW("Can't get data from source \"" << source << "\": source unknown.");
    return node->getData(time, tolerance);
}

bool TessarityPrivate::deleteSource(const std::string& name) {
    {
        // Processes hold their nodes themselves: removing the name disturbs none of them.
        boost::mutex::scoped_lock lock(_sourcesMutex);
        if (_sources.erase(name)) return true;
    }
    TES_LOG(kelvo::log::Error, "Can't delete source \"" << name << "\": source unknown.");
    return false;
}

void TessarityPrivate::startScheduler() { _scheduler->start(); }

void TessarityPrivate::stopScheduler() { _scheduler->stop(); }

}  // namespace Tessarity
