// Values: tags, conversions, text forms, time arithmetic and the name hash.
#include <chrono>
#include <future>
#include <sstream>
#include <thread>

#include <gtest/gtest.h>
#include <kelvo/clock.h>
#include <tessarity/data.h>
#include <tessarity/stringhash.h>
#include <boost/make_shared.hpp>

using namespace Tessarity;
using Dur = Type::Duration;
using Tm = Type::Time;
typedef std::vector<boost::shared_ptr<Data>> Elements;

static std::ostream& operator<<(std::ostream& out, const Data& d) { return out << d.toString(); }

// The values as text, each followed by a blank, so that a row of results reads as one line.
template <typename... T>
static std::string join(const T&... values) {
    std::ostringstream out;
    ((out << values << ' '), ...);
    return out.str();
}

const auto us = [](const auto& value) { return value.getTotalMicroseconds(); };
const auto box = [](const auto& value) { return boost::make_shared<Data>(value); };

TEST(Data, ConversionsNeedTheirTagAndOnlyNumbersWiden) {
    Data empty, i(3), f(2.5f), text("x");
    Elements elements = empty;
    EXPECT_TRUE(empty.getType() == Invalid && !static_cast<void*>(empty) && elements.empty());
    EXPECT_EQ(
        "x   3 4 0 2.5 -2 0 0 0 0 0 0 1 ",  // a Double does not narrow to float
        join(std::string(text), std::string(empty), std::string(i), float(i), float(Data(4u)),
             float(Data(3.0)), double(Data(2.5f)), double(Data(-2)), double(empty), int(Data(3u)),
             int(empty), unsigned(i), bool(Data(1)), bool(empty), bool(Data(true))));
    // Pointers need the exact tag: no widening, and Time and Duration stay apart.
    EXPECT_EQ("3 2.5 x 0 0 0 0 0 ",
              join(*static_cast<int*>(i), *static_cast<float*>(f), *static_cast<std::string*>(text),
                   static_cast<float*>(i), static_cast<double*>(f), static_cast<Elements*>(text),
                   static_cast<Dur*>(Data(Tm(5))), static_cast<Tm*>(Data(Dur(5)))));

    // A shared pointer is kept, a value is copied; copies of a Data share its payload.
    auto time = boost::make_shared<Tm>(10);
    EXPECT_TRUE(Data(time).getType() == Time && static_cast<Tm*>(Data(time)) == time.get());
    Elements items{box(1)}, back = Data(items);
    EXPECT_EQ(items, back);  // the elements are shared
    auto opaque = boost::make_shared<int>(4);
    Data unknown{boost::shared_ptr<void>(opaque)}, copy = unknown;
    EXPECT_TRUE(unknown.getType() == Unknown && !static_cast<int*>(unknown));
    EXPECT_EQ(opaque.get(), unknown.getRawData().get());
    EXPECT_EQ(3, opaque.use_count());
    copy.setTimestamp(Tm(9));
    EXPECT_EQ(join(0, 9), join(us(unknown.getTimestamp()), us(copy.getTimestamp())));
}

TEST(Data, TextFormsAndTypeNames) {
    Elements outer{nullptr, box(7u), box(Elements{box(1.5f), box("s")}), box(Data())};
    EXPECT_EQ(
        "True False -7 1.5f 1.5 3.14159 a|b {Time second=-1} {Duration Milliseconds=2} "
        "{void*}   {} {NULL;7;{1.5f;s};} ",
        join(Data(true), Data(false), Data(-7), Data(1.5f), Data(1.5), Data(3.14159265),
             Data("a|b"), Data(Tm(-1999999)), Data(Dur(2999)), Data(boost::make_shared<int>(1)),
             Data(boost::shared_ptr<Tm>()), Data(), Data(Elements()), Data(outer)));

    std::string names;
    for (int type = -1; type <= 31; ++type)
        names += Data::getTypeName(static_cast<DataType>(type)) + " ";
    EXPECT_EQ(
        "Invalid Invalid Boolean Integer UnsignedInteger Float Double String ColorImage "
        "GrayscaleImage BinaryImage LabelImage DepthImage XYZImage MatrixImage Histogram "
        "AudioBuffer Color Vector2 Vector3 Vector4 Vector6 Region2 Region3 Array Human Object2D "
        "Object3D Time Duration Unknown Lambda Invalid ",
        names);
    for (int type = 0; type <= Lambda; ++type)
        EXPECT_EQ(type, Data::getTypeFromName(Data::getTypeName(static_cast<DataType>(type))));
    EXPECT_EQ(Invalid, Data::getTypeFromName("integer"));  // names are case-sensitive
}

TEST(TimeAndDuration, CountsTruncateTowardZeroAndScaleInSinglePrecision) {
    // Single precision: 123456789 is not a float, its neighbour 123456792 is.
    EXPECT_EQ(
        "1 -1 -1 -1999 2 7200000000 -60000000 3000000 4000 5 -50 105 70 -2 123456792 "
        "123456792 -2 -3 ",
        join(Tm(1999999).getTotalSeconds(), Tm(-1999999).getTotalSeconds(),
             Tm(-1999).getTotalMilliseconds(), Dur(-1999999).getTotalMilliseconds(),
             Dur(2999999).getTotalSeconds(), us(Dur::Hours(2)), us(Dur::Minutes(-1)),
             us(Dur::Seconds(3)), us(Dur::Milliseconds(4)), us(Dur::Microseconds(5)),
             us(Tm(50) - Tm(100)), us(Tm(100) + Dur(5)), us(Tm(100) - Dur(30)),
             us(Dur(5) - Dur(8) + Dur(1)), us(Dur(123456789) * 1.0f), us(Dur(123456789) / 1.0f),
             us(Dur(-10) / 4.0f), us(Dur(7) * -0.5f)));
    // Compound assignments change the object and return the new value by value.
    Tm t(100);
    Dur d(8);
    EXPECT_EQ(join(111, 160), join(us((t += Dur(10)) += Dur(1)), us((d *= 2.0f) *= 10.0f)));
    EXPECT_EQ(join(105, 4), join(us(t -= Dur(5)), us(d /= 4.0f)));
    EXPECT_EQ(Dur(1), d -= Dur(3));
    EXPECT_EQ(Dur(2), d += Dur(1));
    EXPECT_TRUE(Tm(-1) < Tm(0) && Tm(1) <= Tm(1) && Tm(2) > Tm(1) && Tm(1) == Tm(1));
    EXPECT_TRUE(Dur(-1) < Dur(0) && Dur(1) >= Dur(1) && Dur(2) > Dur(1) && Dur(2) != Dur(1));

    long long before = kelvo::Clock::now() / 1000, now = us(Tm::now());
    EXPECT_TRUE(before <= now && now <= kelvo::Clock::now() / 1000);
}

TEST(DurationSleep, WholeMillisecondsOnly) {
    using namespace std::chrono;
    auto slept = [](Dur duration, int times) {
        auto start = steady_clock::now();
        for (int i = 0; i < times; ++i) duration.sleep();
        return duration_cast<milliseconds>(steady_clock::now() - start).count();
    };
    EXPECT_LT(slept(Dur::Microseconds(999), 20), 20);  // 0 ms each, not 1 and not 999
    EXPECT_GE(slept(Dur::Milliseconds(20), 1), 20);
    // A negative duration must not wrap around into a sleep of weeks.
    std::packaged_task<void()> negative([] { Dur(-5000).sleep(); });
    std::future<void> finished = negative.get_future();
    std::thread(std::move(negative)).detach();
    EXPECT_EQ(std::future_status::ready, finished.wait_for(seconds(2)));
}

TEST(StringHash, BitExactValuesAndSharedText) {
    // "a" gives 97 + 0x9e3779b9; a byte above 127 counts as negative: "\xE9" is -23.
    EXPECT_EQ("0 0 2654435866 175247762747 2654435746 175247762610 ",
              join(StringHash().getHash(), StringHash("").getHash(), StringHash("a").getHash(),
                   StringHash(std::string("ab")).getHash(), StringHash("\xE9").getHash(),
                   StringHash("a\xE9").getHash()));
    EXPECT_NE(StringHash("a"), StringHash(std::string("a\0b", 3)));
    StringHash name("process"), copy = name;
    EXPECT_EQ(name.text.get(), copy.text.get());
    EXPECT_EQ("", StringHash(static_cast<const char*>(nullptr)).getText());
    EXPECT_EQ("process ", join(name));  // the text alone
}
