// Turns bytes into a built-in filter, values for its inputs (images of every class and size,
// numbers at their extremes, records, arrays, lambdas, nulls) and runs it through a process
// of one node on an engine without workers. OpenCV's exceptions may pass through a filter;
// anything else that escapes, and every memory fault, is a finding.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include <fuzzer/FuzzedDataProvider.h>
#include <opencv2/core.hpp>

#include <kelvo/log.h>
#include <tessarity/tessarity.h>

namespace {

using namespace Tessarity;
typedef boost::shared_ptr<Data> Ptr;
typedef ::Tessarity::Tessarity Engine;

const int kMaxSide = 64;

struct Port {
    bool optional;
    std::vector<DataType> types;
};

// "optional [Integer, Float] size" back into its parts.
Port parse(const std::string& line) {
    Port port{line.compare(0, 9, "optional ") == 0, {}};
    const std::size_t open = line.find('['), close = line.find(']');
    if (open == std::string::npos || close == std::string::npos) return port;
    std::string names = line.substr(open + 1, close - open - 1) + ",";
    for (std::size_t start = 0, comma; (comma = names.find(',', start)) != std::string::npos;
         start = comma + 1) {
        std::string name = names.substr(start, comma - start);
        name.erase(0, name.find_first_not_of(' '));
        port.types.push_back(Data::getTypeFromName(name));
    }
    return port;
}

template <typename T>
T number(FuzzedDataProvider& bytes) {
    // The edges first, then any value.
    static const T edges[] = {0, 1, static_cast<T>(-1), std::numeric_limits<T>::max(),
                              std::numeric_limits<T>::lowest(), std::numeric_limits<T>::min()};
    const unsigned pick = bytes.ConsumeIntegralInRange<unsigned>(0, 8);
    if (pick < 6) return edges[pick];
    if (pick == 6) return static_cast<T>(bytes.ConsumeIntegralInRange<int>(-300, 300));
    return bytes.ConsumeIntegral<T>();
}

float real(FuzzedDataProvider& bytes) {
    switch (bytes.ConsumeIntegralInRange<int>(0, 6)) {
        case 0: return std::numeric_limits<float>::quiet_NaN();
        case 1: return std::numeric_limits<float>::infinity();
        case 2: return -std::numeric_limits<float>::infinity();
        case 3: return bytes.ConsumeFloatingPointInRange<float>(-2.0f, 2.0f);
        case 4: return static_cast<float>(bytes.ConsumeIntegralInRange<int>(-100, 100));
        default: return bytes.ConsumeFloatingPoint<float>();
    }
}

// An image of class C, of a size mostly within 0..64 and of samples from the bytes.
template <class C>
Ptr image(FuzzedDataProvider& bytes, int width, int height) {
    auto made = boost::make_shared<C>(width, height, "rgb", Type::Time(1 + bytes.ConsumeIntegral<uint16_t>()),
                                      real(bytes), real(bytes));
    cv::Mat& mat = made->mat;
    const std::size_t rowBytes = mat.cols * mat.elemSize();
    for (int y = 0; y < mat.rows; ++y) {
        std::vector<uint8_t> row = bytes.ConsumeBytes<uint8_t>(rowBytes);
        row.resize(rowBytes, static_cast<uint8_t>(y * 37));
        std::copy(row.begin(), row.end(), mat.ptr<uint8_t>(y));
    }
    return boost::make_shared<Data>(made);
}

Ptr value(FuzzedDataProvider& bytes, DataType type, Engine& engine,
          const std::vector<std::string>& filters, int depth);

Ptr imageOf(FuzzedDataProvider& bytes, DataType type) {
    // Most images share one of a few sizes, so that inputs meet; some are odd.
    static const int sides[] = {0, 1, 2, 3, 7, 16, 33, kMaxSide};
    int width = sides[bytes.ConsumeIntegralInRange<int>(0, 7)];
    int height = sides[bytes.ConsumeIntegralInRange<int>(0, 7)];
    if (bytes.ConsumeBool()) width = height = 8;
    switch (type) {
        case ColorImage: return image<Type::ColorImage>(bytes, width, height);
        case GrayscaleImage: return image<Type::GrayscaleImage>(bytes, width, height);
        case BinaryImage: return image<Type::BinaryImage>(bytes, width, height);
        case LabelImage: return image<Type::LabelImage>(bytes, width, height);
        case DepthImage: return image<Type::DepthImage>(bytes, width, height);
        case XYZImage: return image<Type::XYZImage>(bytes, width, height);
        default: return image<Type::MatrixImage>(bytes, width, height);
    }
}

Ptr value(FuzzedDataProvider& bytes, DataType type, Engine& engine,
          const std::vector<std::string>& filters, int depth) {
    switch (type) {
        case Boolean: return boost::make_shared<Data>(bytes.ConsumeBool());
        case Integer: return boost::make_shared<Data>(number<int>(bytes));
        case UnsignedInteger: return boost::make_shared<Data>(number<unsigned int>(bytes));
        case Float: return boost::make_shared<Data>(real(bytes));
        case Double: return boost::make_shared<Data>(static_cast<double>(real(bytes)));
        case String: return boost::make_shared<Data>(bytes.ConsumeRandomLengthString(16));
        case ColorImage:
        case GrayscaleImage:
        case BinaryImage:
        case LabelImage:
        case DepthImage:
        case XYZImage:
        case MatrixImage: return imageOf(bytes, type);
        case Histogram: {
            // A histogram has at least one bin, which its searches read unchecked.
            const unsigned size = bytes.ConsumeIntegralInRange<unsigned>(1, 300);
            const unsigned channels = bytes.ConsumeIntegralInRange<unsigned>(0, 4);
            auto histogram = boost::make_shared<Type::Histogram>(size, channels);
            for (unsigned i = 0; histogram->getData() && i < size; ++i)
                histogram->getData()[i] = real(bytes);
            return boost::make_shared<Data>(histogram);
        }
        case Color: return boost::make_shared<Data>(Type::Color(real(bytes), real(bytes), real(bytes)));
        case Vector2: return boost::make_shared<Data>(real(bytes), real(bytes));
        case Vector3: return boost::make_shared<Data>(real(bytes), real(bytes), real(bytes));
        case Vector4:
            return boost::make_shared<Data>(real(bytes), real(bytes), real(bytes), real(bytes));
        case Vector6:
            return boost::make_shared<Data>(real(bytes), real(bytes), real(bytes), real(bytes),
                                            real(bytes), real(bytes));
        case Region2:
            return boost::make_shared<Data>(
                Type::Region2(real(bytes), real(bytes), real(bytes), real(bytes)));
        case Region3:
            return boost::make_shared<Data>(Type::Region3(real(bytes), real(bytes), real(bytes),
                                                          real(bytes), real(bytes), real(bytes)));
        case Array: {
            std::vector<Ptr> items;
            const int count = depth > 1 ? 0 : bytes.ConsumeIntegralInRange<int>(0, 4);
            for (int i = 0; i < count; ++i)
                items.push_back(value(bytes, static_cast<DataType>(bytes.ConsumeIntegralInRange<int>(0, Lambda)),
                                      engine, filters, depth + 1));
            return boost::make_shared<Data>(items);
        }
        case Human: return boost::make_shared<Data>(boost::make_shared<Type::Human>());
        case Object2D:
            return boost::make_shared<Data>(boost::make_shared<Type::Object2D>(
                boost::make_shared<Type::Region2>(real(bytes), real(bytes), real(bytes), real(bytes))));
        case Object3D:
            return boost::make_shared<Data>(boost::make_shared<Type::Object3D>(
                boost::make_shared<Type::Region3>(real(bytes), real(bytes), real(bytes), real(bytes),
                                                  real(bytes), real(bytes))));
        case Time: return boost::make_shared<Data>(Type::Time(bytes.ConsumeIntegral<int64_t>()));
        case Duration: return boost::make_shared<Data>(Type::Duration(bytes.ConsumeIntegral<int64_t>()));
        case Lambda: {
            if (depth > 0) return Ptr();  // a lambda's own inputs stay plain
            const std::string name = filters[bytes.ConsumeIntegralInRange<std::size_t>(0, filters.size() - 1)];
            return boost::make_shared<Data>(engine.createLambda(name));
        }
        default: return Ptr();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static Engine* engine = [] {
        // Refused inputs log; the lines themselves are not under test here.
        kelvo::log::setHandler([](int, const std::string&, const std::string&) {});
        return new Engine(0);
    }();
    static const std::vector<std::string> filters = engine->getFilters();
    static long long time = 0;

    FuzzedDataProvider bytes(data, size);
    const std::string filter = filters[bytes.ConsumeIntegralInRange<std::size_t>(0, filters.size() - 1)];
    Engine::Pairs inputs, outputs;
    std::vector<std::pair<std::string, Ptr>> values;
    for (const std::string& line : engine->getFilterInputs(filter)) {
        const Port port = parse(line);
        const std::string name = line.substr(line.rfind(' ') + 1);
        // Mostly a type the port takes, sometimes any type, or nothing on an optional port.
        DataType type = static_cast<DataType>(bytes.ConsumeIntegralInRange<int>(0, Lambda));
        if (!port.types.empty() && bytes.ConsumeIntegralInRange<int>(0, 3) != 0)
            type = port.types[bytes.ConsumeIntegralInRange<std::size_t>(0, port.types.size() - 1)];
        if (port.optional && bytes.ConsumeIntegralInRange<int>(0, 4) == 0) continue;
        const std::string source = "in_" + name;
        engine->createSource(source);
        inputs.push_back({name, source});
        values.push_back({source, value(bytes, type, *engine, filters, 0)});
    }
    for (const std::string& line : engine->getFilterOutputs(filter)) {
        const std::string name = line.substr(line.rfind(' ') + 1);
        outputs.push_back({name, "out_" + name});
    }
    if (!engine->createProcess("fuzz", filter, inputs, outputs, {}, {}, 0, 1e7f,
                               Type::Duration::Seconds(1))) {
        for (const auto& input : values) engine->deleteSource(input.first);
        return 0;
    }
    for (const auto& input : values) engine->setData(input.first, input.second);
    // Two runs: filters that keep state meet their memory the second time.
    for (int run = 0; run < 2; ++run) {
        try {
            for (const auto& output : outputs)
                engine->getData("fuzz:" + output.second, Type::Time(++time));
        } catch (const cv::Exception&) {
            // OpenCV's refusals (mismatched sizes, empty matrices) pass through filters.
        }
    }
    // A run that an exception cut short leaves its counts on the nodes: the next input gets
    // new ones.
    engine->deleteProcess("fuzz");
    for (const auto& input : values) engine->deleteSource(input.first);
    return 0;
}
