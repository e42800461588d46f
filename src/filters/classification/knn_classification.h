#ifndef TESSARITY_FILTERS_CLASSIFICATION_KNN_CLASSIFICATION_H
#define TESSARITY_FILTERS_CLASSIFICATION_KNN_CLASSIFICATION_H

#include <cstddef>
#include <string>
#include <vector>

#include "graph/filter_primitive.h"

namespace Tessarity {
namespace Filters {

// The class label of a feature vector, an Array of numbers on "in", after a data base of
// labelled descriptors read from an XML file once, by the constructor. With "k" unbound or
// below 2 the label is that of the nearest descriptor, the first in the file on a tie; with k
// of 2 or more, an unweighted vote of the k nearest, a tie going to the smallest label, where
// neighbours that no descriptor fills vote for label 0. Distances are squared Euclidean, summed
// component by component in single precision.
//
// The XML reader's exceptions leave the constructor: for a missing or malformed file, a missing
// node, a size or count that is not a number. A data base of another type than "knn" leaves the
// filter empty: it answers 0 to an empty Array and nothing to any other.
class KNNClassification : public FilterPrimitive {
public:
    explicit KNNClassification(const std::string& path);

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;

private:
    // Descriptors are stored by blocks of this many, component by component, so that the
    // distances of a block accumulate side by side in the vector unit.
    static constexpr std::size_t kBlock = 16;

    // True if the file is a "knn" data base, which then becomes the filter's. Only the
    // descriptors that the file holds count, up to the count it announces; numbers a
    // descriptor lacks are 0. False, the filter unchanged, for another type, for a negative
    // size or count, and for a data base beyond the reach of an int.
    bool _loadDataBase(const std::string& path);
    // The squared distances from `query` to the descriptors of block `block`.
    void _distances(std::size_t block, const float* query, float* distances) const;
    int _nearest(const float* query) const;
    int _vote(const float* query, int k) const;

    int _size;   // numbers per descriptor
    int _count;  // descriptors
    std::vector<int> _labels;
    // Component j of descriptor i at ((i / kBlock) * _size + j) * kBlock + i % kBlock; the
    // last block padded with zeros.
    std::vector<float> _descriptors;
};

}  // namespace Filters
}  // namespace Tessarity

#endif
