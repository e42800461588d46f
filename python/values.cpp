#include "values.h"

#include <climits>

#include <boost/make_shared.hpp>
#include <pybind11/numpy.h>
#include <pybind11/stl.h>

#include "lifetime.h"

namespace TessarityPython {

using namespace Tessarity;
using py::detail::npy_api;

namespace {

PackageClasses classes;

// numpy's scalar types that pick a tag of their own.
struct NumpyScalars {
    py::handle generic, boolean, float32, uint32, integer;
};
NumpyScalars scalars;

// The deleter of an image that borrows an array's pixels: the array goes with the image.
struct ReleaseArray {
    PyObject* array;
    template <typename Image>
    void operator()(Image* image) const {
        delete image;
        releaseReference(array);
    }
};

// The deleter of a boxed object, by which toPython knows the box.
struct ReleaseBoxed {
    void operator()(PyObject* object) const { releaseReference(object); }
};

// --- images ---------------------------------------------------------------------------------

struct ImageClass {
    DataType type;
    int channels;
    int dtype;        // numpy type number of the samples
    int alsoDtype;    // another one accepted as is (bool for a binary image), or -1
    const char* dtypeName;
};

const ImageClass kImageClasses[] = {
    {ColorImage, 3, npy_api::NPY_UINT8_, -1, "uint8"},
    {GrayscaleImage, 1, npy_api::NPY_UINT8_, -1, "uint8"},
    {BinaryImage, 1, npy_api::NPY_UINT8_, npy_api::NPY_BOOL_, "uint8 or bool"},
    {LabelImage, 1, npy_api::NPY_INT32_, -1, "int32"},
    {DepthImage, 1, npy_api::NPY_UINT16_, -1, "uint16"},
    {XYZImage, 3, npy_api::NPY_FLOAT_, -1, "float32"},
    {MatrixImage, 1, npy_api::NPY_FLOAT_, -1, "float32"},
};

const ImageClass* imageClass(DataType type) {
    for (const ImageClass& image : kImageClasses)
        if (image.type == type) return &image;
    return nullptr;
}

py::detail::PyArray_Proxy* proxy(py::handle array) { return py::detail::array_proxy(array.ptr()); }

int dtypeOf(py::handle array) {
    return py::detail::array_descriptor_proxy(proxy(array)->descr)->type_num;
}

bool fits(const ImageClass& image, py::handle array) {
    const py::detail::PyArray_Proxy* a = proxy(array);
    const int dtype = dtypeOf(array);
    if (dtype != image.dtype && dtype != image.alsoDtype) return false;
    return image.channels == 1 ? a->nd == 2 : a->nd == 3 && a->dimensions[2] == image.channels;
}

std::string describeArray(py::handle array) {
    return py::str("dtype {} and shape {}")
        .format(array.attr("dtype"), array.attr("shape"))
        .cast<std::string>();
}

// The class an array stands for when nothing says otherwise: a uint8 plane is a greyscale
// image, a bool one a binary image.
const ImageClass* defaultImageClass(py::handle array) {
    if (dtypeOf(array) == npy_api::NPY_BOOL_) return imageClass(BinaryImage);
    for (const ImageClass& image : kImageClasses)
        if (image.type != BinaryImage && fits(image, array)) return &image;
    return nullptr;
}

struct ImageMeta {
    std::string colorSpace = "unknow";
    Type::Time time;
    float horizontalAngle = 0.0f;
    float verticalAngle = 0.0f;
};

template <class C>
DataPtr borrowImage(py::array array, const ImageMeta& meta) {
    const py::detail::PyArray_Proxy* a = proxy(array);
    if (a->dimensions[0] > INT_MAX || a->dimensions[1] > INT_MAX)
        throw py::value_error("an image of more than 2**31 rows or columns");
    const cv::Mat mat(static_cast<int>(a->dimensions[0]), static_cast<int>(a->dimensions[1]),
                      C::MatType, a->data);
    boost::shared_ptr<C> image(
        new C(mat, meta.colorSpace, meta.time, meta.horizontalAngle, meta.verticalAngle),
        ReleaseArray{array.release().ptr()});
    return boost::make_shared<Data>(image);
}

// The image holds the array's own pixels while they are C-contiguous and aligned in native
// byte order; any other array is copied once into one that is.
DataPtr imageData(const ImageClass& image, py::handle value, const ImageMeta& meta) {
    py::array array = py::reinterpret_borrow<py::array>(value);
    const char order = py::detail::array_descriptor_proxy(proxy(array)->descr)->byteorder;
    if (order == (__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__ ? '>' : '<'))
        array = array.attr("astype")(array.attr("dtype").attr("newbyteorder")("="));
    const int layout = npy_api::NPY_ARRAY_C_CONTIGUOUS_ | npy_api::NPY_ARRAY_ALIGNED_;
    if ((proxy(array)->flags & layout) != layout) {
        array = py::array::ensure(array, layout);
        if (!array) throw py::error_already_set();
    }
    switch (image.type) {
        case ColorImage:
            return borrowImage<Type::ColorImage>(array, meta);
        case GrayscaleImage:
            return borrowImage<Type::GrayscaleImage>(array, meta);
        case BinaryImage:
            return borrowImage<Type::BinaryImage>(array, meta);
        case LabelImage:
            return borrowImage<Type::LabelImage>(array, meta);
        case DepthImage:
            return borrowImage<Type::DepthImage>(array, meta);
        case XYZImage:
            return borrowImage<Type::XYZImage>(array, meta);
        default:
            return borrowImage<Type::MatrixImage>(array, meta);
    }
}

DataPtr arrayData(py::handle array, const Type::Time& time) {
    const ImageClass* image = defaultImageClass(array);
    if (!image)
        throw py::type_error("no image class takes an array of " + describeArray(array) +
                             ": HxW uint8, bool, uint16, int32 or float32, or HxWx3 uint8 or "
                             "float32");
    ImageMeta meta;
    meta.time = time;
    return imageData(*image, array, meta);
}

// tessarity.ColorImage(array, ...) and its siblings: the class is named, not guessed.
DataPtr explicitImageData(py::handle value, const Type::Time& time) {
    const std::string name = value.attr("type").cast<std::string>();
    const ImageClass* image = imageClass(Data::getTypeFromName(name));
    py::object array = value.attr("array");
    if (!image) throw py::value_error("no image class " + name);
    if (!npy_api::get().PyArray_Check_(array.ptr()) || !fits(*image, array))
        throw py::type_error(name + " needs a numpy array of " + image->dtypeName + " samples " +
                             (image->channels == 1 ? "of shape (height, width)"
                                                   : "of shape (height, width, 3)") +
                             ", got " +
                             (npy_api::get().PyArray_Check_(array.ptr())
                                  ? "an array of " + describeArray(array)
                                  : py::str(py::type::of(array)).cast<std::string>()));
    ImageMeta meta;
    meta.colorSpace = value.attr("color_space").cast<std::string>();
    py::object own = value.attr("time");
    meta.time = own.is_none() ? time : toTime(own);
    meta.horizontalAngle = value.attr("horizontal_angle").cast<float>();
    meta.verticalAngle = value.attr("vertical_angle").cast<float>();
    return imageData(*image, array, meta);
}

// A read-only numpy view of the image's matrix; the view's base keeps the value alive.
template <class C>
py::object imageView(const DataPtr& data, const C& image, int dtype) {
    const cv::Mat& mat = image.mat;
    const int nd = C::Channels == 1 ? 2 : 3;
    Py_intptr_t shape[3] = {mat.rows, mat.cols, C::Channels};
    npy_api& api = npy_api::get();
    if (mat.empty()) {
        shape[0] = shape[1] = 0;
        return py::reinterpret_steal<py::object>(api.PyArray_NewFromDescr_(
            api.PyArray_Type_, api.PyArray_DescrFromType_(dtype), nd, shape, nullptr, nullptr, 0,
            nullptr));
    }
    Py_intptr_t strides[3] = {static_cast<Py_intptr_t>(mat.step[0]),
                              static_cast<Py_intptr_t>(mat.elemSize()),
                              static_cast<Py_intptr_t>(mat.elemSize1())};
    py::object view = py::reinterpret_steal<py::object>(
        api.PyArray_NewFromDescr_(api.PyArray_Type_, api.PyArray_DescrFromType_(dtype), nd, shape,
                                  strides, mat.data, 0, nullptr));
    if (!view) throw py::error_already_set();
    py::capsule owner(new DataPtr(data), [](void* held) { delete static_cast<DataPtr*>(held); });
    if (api.PyArray_SetBaseObject_(view.ptr(), owner.release().ptr()) != 0)
        throw py::error_already_set();
    return view;
}

template <class C>
py::object imageView(const DataPtr& data) {
    const ImageClass* image = imageClass(data->getType());
    return imageView(data, *static_cast<const C*>(data->getRawData().get()), image->dtype);
}

// --- numbers, vectors and records -----------------------------------------------------------

DataPtr integerData(py::handle value) {
    int overflow = 0;
    const long long number = PyLong_AsLongLongAndOverflow(value.ptr(), &overflow);
    if (number == -1 && PyErr_Occurred()) throw py::error_already_set();
    if (!overflow && number >= INT_MIN && number <= INT_MAX)
        return boost::make_shared<Data>(static_cast<int>(number));
    if (!overflow && number > INT_MAX && number <= UINT_MAX)
        return boost::make_shared<Data>(static_cast<unsigned int>(number));
    PyErr_SetString(PyExc_OverflowError,
                    ("an integer of the engine lies in [-2**31, 2**32 - 1], got " +
                     bytes(py::repr(value)))
                        .c_str());
    throw py::error_already_set();
}

float number(py::handle value) {
    const double x = PyFloat_AsDouble(value.ptr());
    if (x == -1.0 && PyErr_Occurred()) throw py::error_already_set();
    return static_cast<float>(x);
}

DataPtr vectorData(py::handle value) {
    const py::tuple t = py::reinterpret_borrow<py::tuple>(value);
    switch (t.size()) {
        case 2:
            return boost::make_shared<Data>(number(t[0]), number(t[1]));
        case 3:
            return boost::make_shared<Data>(number(t[0]), number(t[1]), number(t[2]));
        case 4:
            return boost::make_shared<Data>(number(t[0]), number(t[1]), number(t[2]),
                                            number(t[3]));
        case 6:
            return boost::make_shared<Data>(number(t[0]), number(t[1]), number(t[2]),
                                            number(t[3]), number(t[4]), number(t[5]));
        default:
            throw py::type_error("a tuple is a vector of 2, 3, 4 or 6 numbers, got " +
                                 std::to_string(t.size()) + " items");
    }
}

template <typename V, int N>
py::tuple vectorTuple(const V& vector) {
    const float* components = reinterpret_cast<const float*>(&vector);
    py::tuple t(N);
    for (int i = 0; i < N; ++i) t[i] = py::float_(components[i]);
    return t;
}

Type::Region2 region2(py::handle value) {
    const py::tuple start = value.attr("start"), end = value.attr("end");
    if (start.size() != 2 || end.size() != 2)
        throw py::type_error("a Region2 has corners of 2 numbers");
    return Type::Region2(number(start[0]), number(start[1]), number(end[0]), number(end[1]));
}

Type::Region3 region3(py::handle value) {
    const py::tuple start = value.attr("start"), end = value.attr("end");
    if (start.size() != 3 || end.size() != 3)
        throw py::type_error("a Region3 has corners of 3 numbers");
    return Type::Region3(number(start[0]), number(start[1]), number(start[2]), number(end[0]),
                         number(end[1]), number(end[2]));
}

py::object regionObject(const Type::Region2& region) {
    return classes.region2(vectorTuple<Type::Vector2, 2>(region.start),
                           vectorTuple<Type::Vector2, 2>(region.end));
}

py::object regionObject(const Type::Region3& region) {
    return classes.region3(vectorTuple<Type::Vector3, 3>(region.start),
                           vectorTuple<Type::Vector3, 3>(region.end));
}

// Bins or samples as (n,) for one channel or (n, channels); copied both ways.
template <typename T>
py::array_t<T, py::array::c_style> channelsArray(const T* values, unsigned int size,
                                                 unsigned int channels) {
    if (channels == 1) return py::array_t<T, py::array::c_style>(size, values);
    return py::array_t<T, py::array::c_style>(
        {static_cast<py::ssize_t>(size / channels), static_cast<py::ssize_t>(channels)}, values);
}

template <typename T>
py::array_t<T, py::array::c_style | py::array::forcecast> channelsInput(py::handle values,
                                                                        unsigned int& channels) {
    auto array = py::array_t<T, py::array::c_style | py::array::forcecast>::ensure(values);
    if (!array || array.ndim() < 1 || array.ndim() > 2 || array.size() == 0)
        throw py::type_error("expected a non-empty array of shape (n,) or (n, channels)");
    channels = array.ndim() == 1 ? 1 : static_cast<unsigned int>(array.shape(1));
    return array;
}

DataPtr histogramData(py::handle value) {
    unsigned int channels = 1;
    auto bins = channelsInput<float>(value.attr("bins"), channels);
    return boost::make_shared<Data>(boost::make_shared<Type::Histogram>(
        bins.data(), static_cast<unsigned int>(bins.size()), channels));
}

DataPtr audioData(py::handle value) {
    unsigned int channels = 1;
    auto samples = channelsInput<short>(value.attr("samples"), channels);
    py::object time = value.attr("time");
    return boost::make_shared<Data>(boost::make_shared<Type::AudioBuffer>(
        static_cast<const short*>(samples.data()), static_cast<unsigned int>(samples.size()),
        channels, value.attr("sample_rate").cast<unsigned int>(),
        time.is_none() ? Type::Time() : toTime(time)));
}

DataPtr colorData(py::handle value) {
    return boost::make_shared<Data>(Type::Color(number(value.attr("r")), number(value.attr("g")),
                                                number(value.attr("b"))));
}

py::object unboxed(const DataPtr& data) {
    const boost::shared_ptr<void> raw = data->getRawData();
    if (!boost::get_deleter<ReleaseBoxed>(raw))
        throw py::type_error("a value of type Unknown made by C++ code has no Python form");
    return py::reinterpret_borrow<py::object>(static_cast<PyObject*>(raw.get()));
}

bool isInstance(py::handle value, py::handle type) {
    const int result = PyObject_IsInstance(value.ptr(), type.ptr());
    if (result < 0) throw py::error_already_set();
    return result == 1;
}

DataPtr numpyScalarData(py::handle value) {
    const py::object scalar = py::reinterpret_borrow<py::object>(value);
    if (isInstance(value, scalars.boolean)) return boost::make_shared<Data>(bool(py::bool_(scalar)));
    if (isInstance(value, scalars.float32)) return boost::make_shared<Data>(number(value));
    if (isInstance(value, scalars.uint32))
        return boost::make_shared<Data>(value.cast<unsigned int>());
    if (isInstance(value, scalars.integer)) return integerData(py::int_(scalar));
    return boost::make_shared<Data>(py::float_(scalar).cast<double>());
}

}  // namespace

const PackageClasses& packageClasses() { return classes; }

DataPtr boxedData(py::handle value) {
    PyObject* object = value.inc_ref().ptr();
    return boost::make_shared<Data>(boost::shared_ptr<void>(object, ReleaseBoxed()));
}

py::str text(const std::string& bytes) {
    PyObject* decoded = PyUnicode_DecodeUTF8(bytes.data(), static_cast<Py_ssize_t>(bytes.size()),
                                             "surrogateescape");
    if (!decoded) throw py::error_already_set();
    return py::reinterpret_steal<py::str>(decoded);
}

std::string bytes(py::handle text) {
    py::object encoded = py::reinterpret_steal<py::object>(
        PyUnicode_AsEncodedString(text.ptr(), "utf-8", "surrogateescape"));
    if (!encoded) throw py::error_already_set();
    return std::string(PyBytes_AS_STRING(encoded.ptr()),
                       static_cast<std::size_t>(PyBytes_GET_SIZE(encoded.ptr())));
}

Type::Time toTime(py::handle time) {
    if (PyLong_Check(time.ptr()) && !PyBool_Check(time.ptr()))
        return Type::Time(time.cast<long long>());
    if (!isInstance(time, classes.datetime))
        throw py::type_error("a time is an int of microseconds since the epoch or a datetime");
    return Type::Time(classes.toMicroseconds(time).cast<long long>());
}

Type::Duration toDuration(py::handle duration) {
    if (PyLong_Check(duration.ptr()) && !PyBool_Check(duration.ptr()))
        return Type::Duration(duration.cast<long long>());
    if (!isInstance(duration, classes.timedelta))
        throw py::type_error("a duration is an int of microseconds or a timedelta");
    return Type::Duration(classes.toMicroseconds(duration).cast<long long>());
}

py::object timeToPython(const Type::Time& time) {
    return classes.timeFromMicroseconds(time.getTotalMicroseconds());
}

DataPtr toData(py::handle value, const Type::Time& time) {
    PyObject* object = value.ptr();
    if (object == Py_None) return DataPtr();
    if (PyBool_Check(object)) return boost::make_shared<Data>(object == Py_True);
    if (PyLong_Check(object)) return integerData(value);
    if (PyFloat_Check(object)) return boost::make_shared<Data>(PyFloat_AS_DOUBLE(object));
    if (PyUnicode_Check(object)) return boost::make_shared<Data>(bytes(value));
    if (npy_api::get().PyArray_Check_(object)) return arrayData(value, time);
    if (PyList_Check(object)) return boost::make_shared<Data>(toDataList(value));
    if (PyTuple_Check(object)) return vectorData(value);
    if (isInstance(value, classes.image)) return explicitImageData(value, time);
    if (isInstance(value, scalars.generic)) return numpyScalarData(value);
    if (isInstance(value, classes.datetime)) return boost::make_shared<Data>(toTime(value));
    if (isInstance(value, classes.timedelta)) return boost::make_shared<Data>(toDuration(value));
    if (isInstance(value, classes.region2)) return boost::make_shared<Data>(region2(value));
    if (isInstance(value, classes.region3)) return boost::make_shared<Data>(region3(value));
    if (isInstance(value, classes.color)) return colorData(value);
    if (isInstance(value, classes.histogram)) return histogramData(value);
    if (isInstance(value, classes.audioBuffer)) return audioData(value);
    if (py::isinstance<Type::Object2D>(value))
        return boost::make_shared<Data>(value.cast<boost::shared_ptr<Type::Object2D>>());
    if (py::isinstance<Type::Object3D>(value))
        return boost::make_shared<Data>(value.cast<boost::shared_ptr<Type::Object3D>>());
    if (py::isinstance<Type::Human>(value))
        return boost::make_shared<Data>(value.cast<boost::shared_ptr<Type::Human>>());
    if (py::isinstance<Type::Lambda>(value))
        return boost::make_shared<Data>(value.cast<boost::shared_ptr<Type::Lambda>>());
    return boxedData(value);
}

py::object toPython(const DataPtr& data) {
    if (!data) return py::none();
    const void* raw = data->getRawData().get();
    switch (data->getType()) {
        case Invalid:
            return py::none();
        case Boolean:
            return py::bool_(*static_cast<const bool*>(raw));
        case Integer:
            return py::int_(*static_cast<const int*>(raw));
        case UnsignedInteger:
            return py::int_(*static_cast<const unsigned int*>(raw));
        case Float:
            return py::float_(*static_cast<const float*>(raw));
        case Double:
            return py::float_(*static_cast<const double*>(raw));
        case String:
            return text(*static_cast<const std::string*>(raw));
        case Array:
            return toPythonList(*static_cast<const std::vector<DataPtr>*>(raw));
        case ColorImage:
            return imageView<Type::ColorImage>(data);
        case GrayscaleImage:
            return imageView<Type::GrayscaleImage>(data);
        case BinaryImage:
            return imageView<Type::BinaryImage>(data);
        case LabelImage:
            return imageView<Type::LabelImage>(data);
        case DepthImage:
            return imageView<Type::DepthImage>(data);
        case XYZImage:
            return imageView<Type::XYZImage>(data);
        case MatrixImage:
            return imageView<Type::MatrixImage>(data);
        case Histogram: {
            const auto* histogram = static_cast<const Type::Histogram*>(raw);
            return classes.histogram(channelsArray<float>(
                histogram->getData(), histogram->getSize(), histogram->getChannels()));
        }
        case AudioBuffer: {
            const auto* audio = static_cast<const Type::AudioBuffer*>(raw);
            return classes.audioBuffer(
                channelsArray<short>(audio->getData(), audio->getSize(), audio->getChannels()),
                audio->getSampleRate(), timeToPython(audio->getTimestamp()));
        }
        case Color: {
            const auto* color = static_cast<const Type::Color*>(raw);
            return classes.color(color->r(), color->g(), color->b());
        }
        case Vector2:
            return vectorTuple<Type::Vector2, 2>(*static_cast<const Type::Vector2*>(raw));
        case Vector3:
            return vectorTuple<Type::Vector3, 3>(*static_cast<const Type::Vector3*>(raw));
        case Vector4:
            return vectorTuple<Type::Vector4, 4>(*static_cast<const Type::Vector4*>(raw));
        case Vector6:
            return vectorTuple<Type::Vector6, 6>(*static_cast<const Type::Vector6*>(raw));
        case Region2:
            return regionObject(*static_cast<const Type::Region2*>(raw));
        case Region3:
            return regionObject(*static_cast<const Type::Region3*>(raw));
        case Human:
            return py::cast(boost::static_pointer_cast<Type::Human>(data->getRawData()));
        case Object2D:
            return py::cast(boost::static_pointer_cast<Type::Object2D>(data->getRawData()));
        case Object3D:
            return py::cast(boost::static_pointer_cast<Type::Object3D>(data->getRawData()));
        case Time:
            return timeToPython(*static_cast<const Type::Time*>(raw));
        case Duration:
            return classes.durationFromMicroseconds(
                static_cast<const Type::Duration*>(raw)->getTotalMicroseconds());
        case Lambda:
            return py::cast(boost::static_pointer_cast<Type::Lambda>(data->getRawData()));
        case Unknown:
            return unboxed(data);
    }
    throw py::type_error("a value of unknown type tag " + std::to_string(data->getType()));
}

std::vector<DataPtr> toDataList(py::handle values) {
    std::vector<DataPtr> list;
    for (py::handle value : values) list.push_back(toData(value));
    return list;
}

py::list toPythonList(const std::vector<DataPtr>& values) {
    py::list list(values.size());
    for (std::size_t i = 0; i < values.size(); ++i) list[i] = toPython(values[i]);
    return list;
}

namespace {

// A record's shared parts are read and written with the GIL released: a thread that holds a
// record's lock may be waiting for the GIL to drop a value it replaced.
template <class O>
void bindObject(py::module_& module, const char* name) {
    py::class_<O, boost::shared_ptr<O>>(module, name)
        .def(py::init([](py::handle region) {
                 if constexpr (std::is_same<O, Type::Object2D>::value)
                     return boost::make_shared<O>(boost::make_shared<Type::Region2>(region2(region)));
                 else
                     return boost::make_shared<O>(boost::make_shared<Type::Region3>(region3(region)));
             }),
             py::arg("region"))
        .def_property_readonly("region", [](const O& object) { return regionObject(*object.getRegion()); })
        .def("get_property",
             [](const O& object, int key) {
                 DataPtr value;
                 {
                     py::gil_scoped_release release;
                     value = object.getPropertyData(key);
                 }
                 return toPython(value);
             })
        .def("set_property",
             [](O& object, int key, py::handle value) {
                 DataPtr data = toData(value);
                 py::gil_scoped_release release;
                 object.setPropertyData(key, data);
             })
        .def("has_property", &O::hasProperty, py::call_guard<py::gil_scoped_release>())
        .def("remove_property", &O::removeProperty, py::call_guard<py::gil_scoped_release>())
        .def("__repr__", [](O& object) {
            std::string properties;
            {
                py::gil_scoped_release release;
                properties = object.toString();
            }
            return py::str("{}({!r}, properties: {})")
                .format(py::type::of<O>().attr("__name__"), regionObject(*object.getRegion()),
                        text(properties));
        });
}

template <typename Get>
py::object objectOrNone(Get get) {
    auto object = [&] {
        py::gil_scoped_release release;
        return get();
    }();
    return object ? py::cast(object) : py::none();
}

void bindHuman(py::module_& module) {
    using H = Type::Human;
    const auto release = py::call_guard<py::gil_scoped_release>();
    py::class_<H, boost::shared_ptr<H>>(module, "Human")
        .def(py::init([] { return boost::make_shared<H>(); }))
        .def_property("id", py::cpp_function(&H::getId, release),
                      py::cpp_function(&H::setId, release))
        .def_property("name", py::cpp_function(&H::getName, release),
                      py::cpp_function(&H::setName, release))
        .def_property(
            "position",
            [](const H& human) -> py::object {
                boost::shared_ptr<Type::Vector3> position;
                {
                    py::gil_scoped_release unlocked;
                    position = human.getPosition();
                }
                if (!position) return py::none();
                return vectorTuple<Type::Vector3, 3>(*position);
            },
            [](H& human, py::handle position) {
                boost::shared_ptr<Type::Vector3> vector;
                if (!position.is_none()) {
                    const py::tuple t = py::reinterpret_borrow<py::tuple>(position);
                    if (t.size() != 3) throw py::type_error("a position is a tuple of 3 numbers");
                    vector = boost::make_shared<Type::Vector3>(number(t[0]), number(t[1]),
                                                               number(t[2]));
                }
                py::gil_scoped_release unlocked;
                human.setPosition(vector);
            })
        .def("get_score", &H::getScore, release)
        .def("has_score", &H::hasScore, release)
        .def("set_score", &H::setScore, release)
        .def("remove_score", &H::removeScore, release)
        .def("get_object2d",
             [](const H& human, const std::string& name) {
                 return objectOrNone([&] { return human.getObject2D(name); });
             })
        .def("has_object2d", &H::hasObject2D, release)
        .def("set_object2d", &H::setObject2D, release)
        .def("remove_object2d", &H::removeObject2D, release)
        .def("get_object3d",
             [](const H& human, const std::string& name) {
                 return objectOrNone([&] { return human.getObject3D(name); });
             })
        .def("has_object3d", &H::hasObject3D, release)
        .def("set_object3d", &H::setObject3D, release)
        .def("remove_object3d", &H::removeObject3D, release)
        .def("get_property",
             [](const H& human, int key) {
                 DataPtr value;
                 {
                     py::gil_scoped_release unlocked;
                     value = human.getPropertyData(key);
                 }
                 return toPython(value);
             })
        .def("set_property",
             [](H& human, int key, py::handle value) {
                 DataPtr data = toData(value);
                 py::gil_scoped_release unlocked;
                 human.setPropertyData(key, data);
             })
        .def("has_property", &H::hasProperty, release)
        .def("remove_property", &H::removeProperty, release);
}

void bindLambda(py::module_& module) {
    using L = Type::Lambda;
    py::class_<L, boost::shared_ptr<L>>(module, "Lambda")
        .def("apply",
             [](L& lambda, py::handle values) {
                 const std::vector<DataPtr> inputs = toDataList(values);
                 std::vector<DataPtr> outputs;
                 {
                     // The filter may be written in Python and take the GIL on this thread.
                     py::gil_scoped_release release;
                     outputs = lambda.apply(inputs);
                 }
                 return toPythonList(outputs);
             })
        .def("curry",
             [](L& lambda, py::handle values) {
                 const std::vector<DataPtr> inputs = toDataList(values);
                 py::gil_scoped_release release;
                 lambda.curry(inputs);
             })
        .def("clone", &L::clone, py::call_guard<py::gil_scoped_release>());
}

}  // namespace

void bindValues(py::module_& module) {
    bindObject<Type::Object2D>(module, "Object2D");
    bindObject<Type::Object3D>(module, "Object3D");
    bindHuman(module);
    bindLambda(module);

    module.def("_register_classes", [](py::dict named) {
        // Kept for the life of the process: workers may convert values until its very end.
        auto keep = [&](const char* name) { return py::object(named[name]).release(); };
        classes = {keep("Color"), keep("Region2"), keep("Region3"), keep("Histogram"),
                   keep("AudioBuffer"), keep("Image"), keep("Filter"), keep("Source"),
                   keep("datetime"), keep("timedelta"), keep("to_microseconds"),
                   keep("time_from_microseconds"), keep("duration_from_microseconds"),
                   keep("emit_log_line")};
        py::module_ numpy = py::module_::import("numpy");
        auto type = [&](const char* name) { return py::object(numpy.attr(name)).release(); };
        scalars = {type("generic"), type("bool_"), type("float32"), type("uint32"),
                   type("integer")};
    });
    module.def(
        "type_name",
        [](py::handle value) -> py::object {
            const DataPtr data = toData(value);
            if (!data) return py::none();
            return py::str(Data::getTypeName(data->getType()));
        },
        py::arg("value"),
        "The engine's type name of the value a Python value becomes, or None for None.");
}

}  // namespace TessarityPython
