#ifndef TESSARITY_FILTERS_MEASURES_BYTE_COUNTS_H
#define TESSARITY_FILTERS_MEASURES_BYTE_COUNTS_H

#include <cstdint>
#include <cstring>

#include <opencv2/core.hpp>

namespace Tessarity {
namespace Filters {

// counts[c][v]: how many pixels of an 8-bit image of N interleaved channels have the value v in
// channel c. Runs of equal bytes would make each increment wait for the last one to be stored,
// so neighbouring pixels count into separate tables (four in all per pixel) summed at the end.
template <int N>
void countBytes(const cv::Mat& image, std::uint32_t (&counts)[N][256]) {
    constexpr int kTables = N == 1 ? 4 : 2;
    std::uint32_t partial[kTables][N][256];
    std::memset(partial, 0, sizeof partial);
    for (int y = 0; y < image.rows; ++y) {
        const unsigned char* p = image.ptr<unsigned char>(y);
        const unsigned char* const end = p + std::size_t(image.cols) * N;
        for (; end - p >= kTables * N; p += kTables * N)
            for (int k = 0; k < kTables; ++k)
                for (int c = 0; c < N; ++c) ++partial[k][c][p[k * N + c]];
        for (; p != end; p += N)
            for (int c = 0; c < N; ++c) ++partial[0][c][p[c]];
    }
    for (int c = 0; c < N; ++c)
        for (int v = 0; v < 256; ++v) {
            std::uint32_t sum = 0;
            for (int k = 0; k < kTables; ++k) sum += partial[k][c][v];
            counts[c][v] = sum;
        }
}

}  // namespace Filters
}  // namespace Tessarity

#endif
