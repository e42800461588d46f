// Shared helpers of the filter tests: values boxed, a filter made and bound to a memory, its
// declared ports as one line, images built from lists of samples, and any value as text.
#pragma once

#include <sstream>
#include <string>
#include <vector>

#include <boost/make_shared.hpp>

#include <tessarity/data.h>
#include <tessarity/types/image.h>

#include "graph/filter.h"
#include "graph/memory_manager.h"
#include "graph/port.h"

namespace filterkit {

using namespace Tessarity;
typedef boost::shared_ptr<Data> Ptr;
typedef std::vector<Ptr> Values;

// A value as the filters take it.
template <typename T>
Ptr box(const T& value) {
    return boost::make_shared<Data>(value);
}

// A filter of class F bound to a memory of its own, run as a node would run it.
template <class F>
struct Bench {
    template <typename... A>
    explicit Bench(A&&... arguments) : filter(boost::make_shared<F>(arguments...)) {
        filter->bindMemoryManager(&memory);
    }
    Values operator()(const Values& inputs, const StringHash& process = "p",
                      const StringHash& request = "r") {
        return filter->applyFilter(inputs, process, request, 0);
    }
    MemoryManager memory;
    boost::shared_ptr<F> filter;
};

// "Name in:Type:Type? ... | out:Type ...", where "?" marks an optional port.
inline std::string ports(const Filter& filter) {
    std::string text = filter.getName();
    for (const auto* list : {&filter.getInputs(), &filter.getOutputs()}) {
        for (const auto& port : *list) {
            text += " " + port->getName();
            for (DataType type : port->getTypes()) text += ":" + Data::getTypeName(type);
            if (port->isOptional()) text += "?";
        }
        if (list == &filter.getInputs()) text += " |";
    }
    return text;
}

// An image of class C, `width` columns wide, its samples in flat order (channels interleaved)
// taken from `samples`, cut or repeated to fill it; colour space "rgb", time 5 µs.
template <class C>
Ptr image(int width, int height, const std::vector<double>& samples) {
    auto made = boost::make_shared<C>(width, height, "rgb", Type::Time(5), 60.0f, 40.0f);
    typedef typename C::Sample T;
    for (int y = 0, i = 0; y < height; ++y)
        for (int x = 0; x < width * C::Channels; ++x, ++i)
            made->mat.template ptr<T>(y)[x] =
                samples.empty() ? T() : static_cast<T>(samples[i % samples.size()]);
    return boost::make_shared<Data>(made);
}

// The pixels of an image value, shared; empty for any other value.
inline cv::Mat matOf(const Ptr& value) {
    if (auto* i = static_cast<Type::ColorImage*>(*value)) return i->mat;
    if (auto* i = static_cast<Type::GrayscaleImage*>(*value)) return i->mat;
    if (auto* i = static_cast<Type::BinaryImage*>(*value)) return i->mat;
    if (auto* i = static_cast<Type::LabelImage*>(*value)) return i->mat;
    if (auto* i = static_cast<Type::DepthImage*>(*value)) return i->mat;
    if (auto* i = static_cast<Type::XYZImage*>(*value)) return i->mat;
    if (auto* i = static_cast<Type::MatrixImage*>(*value)) return i->mat;
    return cv::Mat();
}

// A value as text: "null", an image as its type name and its rows of samples ("Gray 1 2|3 4",
// channels of a pixel joined by ","), anything else as its type name and toString.
inline std::string text(const Ptr& value) {
    if (!value) return "null";
    const DataType type = value->getType();
    if (type < ColorImage || type > MatrixImage)
        return Data::getTypeName(type) + " " + value->toString();
    const cv::Mat mat = matOf(value);
    std::ostringstream out;
    out << Data::getTypeName(type);
    for (int y = 0; y < mat.rows; ++y) {
        out << (y ? "|" : " ");
        for (int x = 0; x < mat.cols; ++x) {
            out << (x ? " " : "");
            for (int c = 0; c < mat.channels(); ++c) {
                double sample = 0;
                switch (mat.depth()) {
                    case CV_8U: sample = mat.ptr<unsigned char>(y)[x * mat.channels() + c]; break;
                    case CV_16U: sample = mat.ptr<unsigned short>(y)[x * mat.channels() + c]; break;
                    case CV_32S: sample = mat.ptr<int>(y)[x * mat.channels() + c]; break;
                    default: sample = mat.ptr<float>(y)[x * mat.channels() + c]; break;
                }
                out << (c ? "," : "") << sample;
            }
        }
    }
    return out.str();
}

// The text of each value, joined by "; ".
inline std::string text(const Values& values) {
    std::string out;
    for (std::size_t i = 0; i < values.size(); ++i) out += (i ? "; " : "") + text(values[i]);
    return out;
}

}  // namespace filterkit
