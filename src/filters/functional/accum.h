#ifndef TESSARITY_FILTERS_FUNCTIONAL_ACCUM_H
#define TESSARITY_FILTERS_FUNCTIONAL_ACCUM_H

#include "graph/filter_primitive.h"

namespace Tessarity {
namespace Filters {

// A running blend of the images on "in", kept per (process, request): the first image is
// absorbed into a private copy and answers nothing; each later one is mixed into that copy in
// place, with the weight "factor" for the new image, and the copy is the answer. The weights
// are f * 256 and (1 - f) * 256, each truncated, so a constant picture drifts slowly down.
// The answer is a live view: later runs change its pixels.
class Accum : public FilterPrimitive {
public:
    Accum();

    std::vector<boost::shared_ptr<Data>> applyFilter(
        const std::vector<boost::shared_ptr<Data>>& inputs, const StringHash& process,
        const StringHash& request, long long depth) override;
};

// acc = (in * inputWeight + acc * accumulatorWeight) >> 8 for every sample of `accumulator`,
// in 32-bit unsigned arithmetic truncated to the sample; `input` must have its size and class.
// Used for colour, gray and depth images.
template <class C>
void _applyAccumFilterImage(C& accumulator, const C& input, unsigned int inputWeight,
                            unsigned int accumulatorWeight);

}  // namespace Filters
}  // namespace Tessarity

#endif
