#ifndef TESSARITY_RUN_IMAGE_FILES_H
#define TESSARITY_RUN_IMAGE_FILES_H

#include <string>
#include <vector>

#include <boost/shared_ptr.hpp>

#include <tessarity/tessarity.h>

namespace TessarityRun {

// Image files through stb_image: PNG, JPEG, PGM and PPM in, PNG out. Failures throw Failure
// with a line that names the file.

// Throws unless `path` is a file that can be opened for reading.
void checkReadable(const std::string& path);

// A file with three or four channels gives a ColorImage, one with one or two a
// GrayscaleImage; an alpha channel is dropped, the colours kept as they are. Samples of 16
// bits are reduced to 8. Colour images of the library hold red, green, blue in that order,
// as the files do, so the bytes are taken unchanged. The image and the value carry `time`.
boost::shared_ptr<Tessarity::Data> readImage(const std::string& path,
                                             const Tessarity::Type::Time& time);

// The picture of an image value: a ColorImage itself, the other image classes through their
// toColorImage. Null for a value that has none (not an image, a MatrixImage, no payload).
boost::shared_ptr<Tessarity::Type::ColorImage> pictureOf(const Tessarity::Data& value);

// Writes a colour image as an 8-bit RGB PNG file.
void writePng(const std::string& path, const Tessarity::Type::ColorImage& image);

// The image files of a directory (by extension, case aside; hidden files skipped), as paths
// in name order, where runs of digits compare by their value: "2.png" before "10.png".
// A directory without any is a failure.
std::vector<std::string> listImageFiles(const std::string& directory);

// The order of listImageFiles.
bool nameOrder(const std::string& a, const std::string& b);

}  // namespace TessarityRun

#endif
