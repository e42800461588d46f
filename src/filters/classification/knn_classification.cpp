#include "filters/classification/knn_classification.h"

#include <algorithm>
#include <climits>
#include <limits>
#include <map>
#include <sstream>

#include <boost/make_shared.hpp>
#include <boost/property_tree/ptree.hpp>
#include <boost/property_tree/xml_parser.hpp>
#include <opencv2/core/hal/intrin.hpp>

#include "graph/port.h"

namespace Tessarity {
namespace Filters {

namespace {

// The first slot of the largest distance, from slot 0 and the distance 0.
std::size_t firstLargest(const std::vector<float>& distances) {
    std::size_t largest = 0;
    float distance = 0.0f;
    for (std::size_t slot = 0; slot < distances.size(); ++slot)
        if (distances[slot] > distance) {
            distance = distances[slot];
            largest = slot;
        }
    return largest;
}

}  // namespace

KNNClassification::KNNClassification(const std::string& path)
    : FilterPrimitive("KNNClassification"), _size(0), _count(0) {
    _addInput("in")->addType(Array);
    _addInput("k")->addType(Integer).setOptional(true);
    _addOutput("out");
    _loadDataBase(path);
}

bool KNNClassification::_loadDataBase(const std::string& path) {
    boost::property_tree::ptree tree;
    boost::property_tree::xml_parser::read_xml(path, tree, 0);
    if (tree.get<std::string>("data.properties.type") != "knn") return false;
    const int size = tree.get<int>("data.properties.size");
    const int count = tree.get<int>("data.properties.count");
    const boost::property_tree::ptree& descriptors = tree.get_child("data.descriptors");
    if (size < 0 || count < 0) return false;
    const std::size_t held = std::min(static_cast<std::size_t>(count), descriptors.size());
    const std::size_t blocks = (held + kBlock - 1) / kBlock;
    if (blocks * kBlock * static_cast<std::size_t>(size) > static_cast<std::size_t>(INT_MAX))
        return false;

    std::vector<int> labels(held);
    std::vector<float> values(blocks * kBlock * static_cast<std::size_t>(size), 0.0f);
    std::size_t i = 0;
    for (const auto& child : descriptors) {
        if (i == held) break;
        // A number that does not parse reads 0 and fails the stream, so the rest of this
        // descriptor reads 0 as well.
        std::stringstream text(child.second.data());
        int label = 0;
        text >> label;
        labels[i] = label;
        float* component = values.data() + (i / kBlock) * kBlock * size + i % kBlock;
        for (int j = 0; j < size; ++j, component += kBlock) {
            float value = 0.0f;
            text >> value;
            *component = value;
        }
        ++i;
    }
    _size = size;
    _count = static_cast<int>(held);
    _labels.swap(labels);
    _descriptors.swap(values);
    return true;
}

void KNNClassification::_distances(std::size_t block, const float* query, float* distances) const {
    // Each lane sums the squares of one descriptor in the order of its components, as a
    // plain loop over that descriptor would.
    const float* values = _descriptors.data() + block * kBlock * _size;
    cv::v_float32x4 sums[4] = {cv::v_setzero_f32(), cv::v_setzero_f32(), cv::v_setzero_f32(),
                               cv::v_setzero_f32()};
    for (int j = 0; j < _size; ++j, values += kBlock) {
        const cv::v_float32x4 component = cv::v_setall_f32(query[j]);
        for (int lane = 0; lane < 4; ++lane) {
            const cv::v_float32x4 difference = component - cv::v_load(values + 4 * lane);
            sums[lane] = sums[lane] + difference * difference;
        }
    }
    for (int lane = 0; lane < 4; ++lane) cv::v_store(distances + 4 * lane, sums[lane]);
}

int KNNClassification::_nearest(const float* query) const {
    float best = std::numeric_limits<float>::max();
    int label = 0;
    float distances[kBlock];
    const std::size_t count = static_cast<std::size_t>(_count);
    for (std::size_t first = 0; first < count; first += kBlock) {
        _distances(first / kBlock, query, distances);
        for (std::size_t i = 0; i < kBlock && first + i < count; ++i)
            if (best > distances[i]) {
                best = distances[i];
                label = _labels[first + i];
            }
    }
    return label;
}

int KNNClassification::_vote(const float* query, int k) const {
    // Past the size of the data base, slots can only stay unfilled: they are counted, not kept.
    const std::size_t count = static_cast<std::size_t>(_count);
    const std::size_t slots = std::min(static_cast<std::size_t>(k), count);
    std::vector<float> nearest(slots, std::numeric_limits<float>::max());
    std::vector<int> labels(slots, 0);
    std::size_t largest = 0;
    float distances[kBlock];
    for (std::size_t first = 0; first < count; first += kBlock) {
        _distances(first / kBlock, query, distances);
        for (std::size_t i = 0; i < kBlock && first + i < count; ++i)
            if (nearest[largest] > distances[i]) {
                nearest[largest] = distances[i];
                labels[largest] = _labels[first + i];
                largest = firstLargest(nearest);
            }
    }
    std::map<int, unsigned int> votes;
    for (int label : labels) ++votes[label];
    if (static_cast<std::size_t>(k) > slots) votes[0] += static_cast<unsigned int>(k - slots);
    int result = 0;
    unsigned int best = 0;
    for (const auto& vote : votes)
        if (vote.second > best) {
            best = vote.second;
            result = vote.first;
        }
    return result;
}

std::vector<boost::shared_ptr<Data>> KNNClassification::applyFilter(
    const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash&, const StringHash&,
    long long) {
    if (inputs.empty() || !inputs[0]) return {};
    // Anything but an Array reads as an empty one.
    const std::vector<boost::shared_ptr<Data>>* elements = *inputs[0];
    const std::size_t length = elements ? elements->size() : 0;
    int k = 1;
    if (inputs.size() == 2 && inputs[1] && inputs[1]->getType() == Integer) k = *inputs[1];
    if (length != static_cast<std::size_t>(_size)) return {};
    std::vector<float> query(length);
    for (std::size_t j = 0; j < length; ++j) {
        const boost::shared_ptr<Data>& element = (*elements)[j];
        if (!element) return {};
        query[j] = static_cast<float>(*element);
    }
    return {boost::make_shared<Data>(k < 2 ? _nearest(query.data()) : _vote(query.data(), k))};
}

}  // namespace Filters
}  // namespace Tessarity
