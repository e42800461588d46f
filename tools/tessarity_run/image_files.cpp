#include "image_files.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>

#include <opencv2/core.hpp>

#include "failure.h"

// The one place of the tool that holds the stb implementations; only the decoders it needs.
#define STB_IMAGE_IMPLEMENTATION
#define STBI_ONLY_PNG
#define STBI_ONLY_JPEG
#include <stb_image.h>
#define STB_IMAGE_WRITE_IMPLEMENTATION
#include <stb_image_write.h>

namespace TessarityRun {

namespace {

namespace fs = std::filesystem;
using namespace Tessarity;

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

struct PixelsFreer {
    void operator()(unsigned char* pixels) const { stbi_image_free(pixels); }
};

bool hasImageExtension(const fs::path& path) {
    std::string extension = path.extension().string();
    std::transform(extension.begin(), extension.end(), extension.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    for (const char* known : {".png", ".jpg", ".jpeg", ".pgm", ".ppm", ".pnm"})
        if (extension == known) return true;
    return false;
}

// The next number of a Netpbm header, past blanks and "#" comments; -1 if there is none.
long headerNumber(const std::string& bytes, std::size_t& at) {
    while (at < bytes.size() && (std::isspace(static_cast<unsigned char>(bytes[at])) || bytes[at] == '#')) {
        if (bytes[at] == '#') at = bytes.find('\n', at);
        if (at == std::string::npos) return -1;
        ++at;
    }
    long value = -1;
    for (; at < bytes.size() && std::isdigit(static_cast<unsigned char>(bytes[at])) && value < 1L << 30; ++at)
        value = (value < 0 ? 0 : value * 10) + (bytes[at] - '0');
    return value;
}

// Binary PGM (P5) and PPM (P6) of 8 or 16 bits, scaled to 0..255. Read here rather than by
// stb_image, whose reader takes 16-bit samples in the machine's byte order and does not
// notice a file that is cut short.
cv::Mat readNetpbm(const std::string& path, const std::string& bytes) {
    std::size_t at = 2;
    const long width = headerNumber(bytes, at), height = headerNumber(bytes, at),
               maximum = headerNumber(bytes, at);
    const int channels = bytes[1] == '5' ? 1 : 3;
    if (width < 1 || height < 1 || width > 1 << 16 || height > 1 << 16 || maximum < 1 ||
        maximum > 65535 || at >= bytes.size() || !std::isspace(static_cast<unsigned char>(bytes[at])))
        throw Failure("cannot read '" + path + "': its PGM or PPM header is malformed");
    const int sampleBytes = maximum > 255 ? 2 : 1;
    const std::size_t size = std::size_t(width) * height * channels * sampleBytes;
    if (bytes.size() - at - 1 < size) throw Failure("cannot read '" + path + "': the file is cut short");
    const cv::Mat samples(int(height), int(width) * channels, sampleBytes == 1 ? CV_8UC1 : CV_8UC2,
                          const_cast<char*>(bytes.data() + at + 1));
    cv::Mat wide = samples, swapped;
    if (sampleBytes == 2) {  // most significant byte first: swap into this little-endian order
        const int swap[] = {0, 1, 1, 0};
        swapped.create(samples.size(), CV_8UC2);
        cv::mixChannels(&samples, 1, &swapped, 1, swap, 2);
        wide = cv::Mat(samples.size(), CV_16UC1, swapped.data);
    }
    cv::Mat kept;
    wide.convertTo(kept, CV_8U, 255.0 / double(maximum));
    return kept.reshape(channels);
}

}  // namespace

void checkReadable(const std::string& path) {
    std::unique_ptr<std::FILE, FileCloser> file(std::fopen(path.c_str(), "rb"));
    if (!file) throw Failure("cannot read '" + path + "': " + std::strerror(errno));
    std::error_code error;
    if (fs::is_directory(path, error)) throw Failure("cannot read '" + path + "': a directory");
}

boost::shared_ptr<Data> readImage(const std::string& path, const Type::Time& time) {
    // Checked first so that a missing file is told apart from one that is no image.
    checkReadable(path);
    std::ifstream file(path, std::ios::binary);
    const std::string bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    cv::Mat kept;
    if (bytes.size() >= 2 && bytes[0] == 'P' && (bytes[1] == '5' || bytes[1] == '6')) {
        kept = readNetpbm(path, bytes);
    } else {
        int width = 0, height = 0, channels = 0;
        std::unique_ptr<unsigned char, PixelsFreer> pixels(stbi_load_from_memory(
            reinterpret_cast<const unsigned char*>(bytes.data()), int(bytes.size()), &width,
            &height, &channels, 0));
        if (!pixels)
            throw Failure("cannot read '" + path + "' as an image (PNG, JPEG, PGM or PPM): " +
                          stbi_failure_reason());
        const cv::Mat read(height, width, CV_8UC(channels), pixels.get());
        if (channels == 1 || channels == 3) {
            kept = read.clone();
        } else {
            // Grey + alpha keeps its grey, RGBA its red, green and blue.
            const int from[] = {0, 0, 1, 1, 2, 2};
            kept.create(height, width, channels == 2 ? CV_8UC1 : CV_8UC3);
            cv::mixChannels(&read, 1, &kept, 1, from, channels == 2 ? 1 : 3);
        }
    }
    boost::shared_ptr<Data> value;
    if (kept.channels() == 3)
        value = boost::make_shared<Data>(boost::make_shared<Type::ColorImage>(kept, "unknow", time));
    else
        value = boost::make_shared<Data>(
            boost::make_shared<Type::GrayscaleImage>(kept, "unknow", time));
    value->setTimestamp(time);
    return value;
}

boost::shared_ptr<Type::ColorImage> pictureOf(const Data& value) {
    if (value.getType() == ColorImage && value.getRawData())
        return boost::static_pointer_cast<Type::ColorImage>(value.getRawData());
    if (Type::GrayscaleImage* image = value) return image->toColorImage();
    if (Type::BinaryImage* image = value) return image->toColorImage();
    if (Type::LabelImage* image = value) return image->toColorImage();
    if (Type::DepthImage* image = value) return image->toColorImage();
    if (Type::XYZImage* image = value) return image->toColorImage();
    return boost::shared_ptr<Type::ColorImage>();
}

void writePng(const std::string& path, const Type::ColorImage& image) {
    const cv::Mat& mat = image.mat;
    if (mat.empty() ||
        !stbi_write_png(path.c_str(), mat.cols, mat.rows, 3, mat.data, static_cast<int>(mat.step)))
        throw Failure("cannot write '" + path + "'" +
                      (mat.empty() ? ": the image has no pixels" : ""));
}

bool nameOrder(const std::string& a, const std::string& b) {
    std::size_t i = 0, j = 0;
    while (i < a.size() && j < b.size()) {
        if (std::isdigit(static_cast<unsigned char>(a[i])) &&
            std::isdigit(static_cast<unsigned char>(b[j]))) {
            // Compare the runs of digits by value: without leading zeros, the longer is larger.
            std::size_t endA = i, endB = j;
            while (endA < a.size() && std::isdigit(static_cast<unsigned char>(a[endA]))) ++endA;
            while (endB < b.size() && std::isdigit(static_cast<unsigned char>(b[endB]))) ++endB;
            std::size_t startA = i, startB = j;
            while (startA + 1 < endA && a[startA] == '0') ++startA;
            while (startB + 1 < endB && b[startB] == '0') ++startB;
            if (endA - startA != endB - startB) return endA - startA < endB - startB;
            const int order = a.compare(startA, endA - startA, b, startB, endB - startB);
            if (order != 0) return order < 0;
            i = endA, j = endB;
        } else {
            if (a[i] != b[j]) return static_cast<unsigned char>(a[i]) < static_cast<unsigned char>(b[j]);
            ++i, ++j;
        }
    }
    if (a.size() - i != b.size() - j) return a.size() - i < b.size() - j;
    return a < b;  // equal by value ("01" and "1"): the plain order decides
}

std::vector<std::string> listImageFiles(const std::string& directory) {
    std::error_code error;
    fs::directory_iterator entries(directory, error);
    if (error) throw Failure("cannot read the directory '" + directory + "': " + error.message());
    std::vector<std::string> names;
    for (const fs::directory_entry& entry : entries) {
        const std::string name = entry.path().filename().string();
        if (name[0] != '.' && hasImageExtension(entry.path()) && entry.is_regular_file(error))
            names.push_back(name);
    }
    if (names.empty())
        throw Failure("no image files in '" + directory + "' (.png, .jpg, .jpeg, .pgm, .ppm)");
    std::sort(names.begin(), names.end(), nameOrder);
    std::vector<std::string> paths;
    for (const std::string& name : names) paths.push_back((fs::path(directory) / name).string());
    return paths;
}

}  // namespace TessarityRun
