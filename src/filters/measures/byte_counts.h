#ifndef TESSARITY_FILTERS_MEASURES_BYTE_COUNTS_H
#define TESSARITY_FILTERS_MEASURES_BYTE_COUNTS_H

#include <cstdint>
#include <cstring>

#include <opencv2/core.hpp>

namespace Tessarity {
namespace Filters {

// counts[c][v]: how many pixels of an 8-bit image of N interleaved channels have the value v in
// channel c. Runs of equal bytes would make each increment wait for the last one to be stored,
// so neighbouring pixels count into separate tables summed at the end; and eight equal gray
// bytes in a row, common in pictures, count at once.
template <int N>
void countBytes(const cv::Mat& image, std::uint32_t (&counts)[N][256]) {
    constexpr int kTables = N == 1 ? 4 : 2, kChunk = N == 1 ? 8 : 2;  // pixels
    std::uint32_t partial[kTables][N][256];
    std::memset(partial, 0, sizeof partial);
    for (int y = 0; y < image.rows; ++y) {
        const unsigned char* p = image.ptr<unsigned char>(y);
        const unsigned char* const end = p + std::size_t(image.cols) * N;
        for (; end - p >= kChunk * N; p += kChunk * N) {
            if constexpr (N == 1) {
                std::uint64_t word;
                std::memcpy(&word, p, sizeof word);
                if (word == (word & 0xff) * 0x0101010101010101u) {
                    partial[0][0][word & 0xff] += kChunk;
                    continue;
                }
            }
            for (int i = 0; i < kChunk; ++i)
                for (int c = 0; c < N; ++c) ++partial[i % kTables][c][p[i * N + c]];
        }
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
