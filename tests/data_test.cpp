#include <chrono>
#include <future>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <kelvo/clock.h>
#include <tessarity/data.h>
#include <tessarity/stringhash.h>
#include <boost/make_shared.hpp>

using namespace Tessarity;
typedef std::vector<boost::shared_ptr<Data>> Elements;

TEST(DataConversion, EmptyDataGivesZeros) {
    Data d;
    EXPECT_EQ(Invalid, d.getType());
    EXPECT_EQ(nullptr, static_cast<void*>(d));
    EXPECT_FALSE(bool(d));
    EXPECT_EQ(0, int(d));
    EXPECT_EQ(0.0, double(d));
    EXPECT_EQ("", std::string(d));
    Elements elements = d;
    EXPECT_TRUE(elements.empty());
    EXPECT_EQ("", d.toString());
}

TEST(DataConversion, ValueConversionsWidenOnlyTowardFloatingPoint) {
    EXPECT_EQ(3.0f, float(Data(3)));
    EXPECT_EQ(4.0f, float(Data(4u)));
    EXPECT_EQ(0.0f, float(Data(3.0)));  // a Double does not narrow
    EXPECT_EQ(3.0, double(Data(3.0f)));
    EXPECT_EQ(-2.0, double(Data(-2)));
    EXPECT_EQ(0, int(Data(3u)));
    EXPECT_EQ(0u, static_cast<unsigned int>(Data(3)));
    EXPECT_FALSE(bool(Data(1)));
    EXPECT_TRUE(bool(Data(true)));
    EXPECT_EQ("", std::string(Data(7)));
    EXPECT_EQ("abc", std::string(Data("abc")));
}

TEST(DataConversion, PointerConversionsNeedTheExactTag) {
    Data i(3), f(2.5f);
    EXPECT_EQ(3, *static_cast<int*>(i));
    EXPECT_EQ(nullptr, static_cast<float*>(i));
    EXPECT_EQ(nullptr, static_cast<double*>(f));
    EXPECT_EQ(2.5f, *static_cast<float*>(f));
    EXPECT_EQ("x", *static_cast<std::string*>(Data("x")));
    EXPECT_EQ(nullptr, static_cast<Elements*>(Data("x")));
    EXPECT_EQ(nullptr, static_cast<Type::Time*>(Data(Type::Duration(5))));
    EXPECT_EQ(5, static_cast<Type::Duration*>(Data(Type::Duration(5)))->getTotalMicroseconds());
    EXPECT_EQ(nullptr, static_cast<Type::Duration*>(Data(Type::Time(5))));
}

TEST(DataConversion, SharedPointersAreKeptAndValuesCopied) {
    auto time = boost::make_shared<Type::Time>(10);
    Data shared(time);
    EXPECT_EQ(Time, shared.getType());
    *time += Type::Duration(5);
    EXPECT_EQ(15, static_cast<Type::Time*>(shared)->getTotalMicroseconds());

    Type::Duration duration(7);
    Data copied(duration);
    duration += Type::Duration(1000);
    EXPECT_EQ(7, static_cast<Type::Duration*>(copied)->getTotalMicroseconds());

    Elements elements{boost::make_shared<Data>(1)};
    Data array(elements);
    elements.push_back(boost::make_shared<Data>(2));
    Elements back = array;
    ASSERT_EQ(1u, back.size());
    EXPECT_EQ(elements[0], back[0]);  // elements are shared, the vector is not

    auto opaque = boost::make_shared<int>(4);
    Data unknown{boost::shared_ptr<void>(opaque)};
    EXPECT_EQ(Unknown, unknown.getType());
    EXPECT_EQ(opaque.get(), unknown.getRawData().get());
    EXPECT_EQ(nullptr, static_cast<int*>(unknown));
    Data copy = unknown;
    EXPECT_EQ(3, opaque.use_count());
    copy.setTimestamp(Type::Time(9));
    EXPECT_EQ(Type::Time(9), copy.getTimestamp());
    EXPECT_EQ(Type::Time(), unknown.getTimestamp());
}

TEST(DataToString, Forms) {
    EXPECT_EQ("True", Data(true).toString());
    EXPECT_EQ("False", Data(false).toString());
    EXPECT_EQ("1.5f", Data(1.5f).toString());
    EXPECT_EQ("1.5", Data(1.5).toString());
    EXPECT_EQ("3.14159", Data(3.14159265).toString());
    EXPECT_EQ("{Time second=-1}", Data(Type::Time(-1999999)).toString());
    EXPECT_EQ("{Duration Milliseconds=2}", Data(Type::Duration(2999)).toString());
    EXPECT_EQ("{void*}", Data(boost::make_shared<int>(1)).toString());
    EXPECT_EQ("", Data(boost::shared_ptr<Type::Time>()).toString());
    EXPECT_EQ("{}", Data(Elements()).toString());
    Elements inner{boost::make_shared<Data>(1.5f), boost::make_shared<Data>("s")};
    Elements outer{boost::shared_ptr<Data>(), boost::make_shared<Data>(7),
                   boost::make_shared<Data>(inner), boost::make_shared<Data>()};
    EXPECT_EQ("{NULL;7;{1.5f;s};}", Data(outer).toString());
}

TEST(DataTypeName, NamesAndNumbers) {
    EXPECT_EQ(23, Array);
    EXPECT_EQ("Boolean", Data::getTypeName(Boolean));
    EXPECT_EQ("Lambda", Data::getTypeName(Lambda));
    EXPECT_EQ("Invalid", Data::getTypeName(static_cast<DataType>(31)));
    EXPECT_EQ("Invalid", Data::getTypeName(static_cast<DataType>(-1)));
    for (int type = 0; type <= Lambda; ++type)
        EXPECT_EQ(type, Data::getTypeFromName(Data::getTypeName(static_cast<DataType>(type))));
    EXPECT_EQ(Invalid, Data::getTypeFromName("integer"));
    EXPECT_EQ(XYZImage, Data::getTypeFromName("XYZImage"));
}

TEST(TimeArithmetic, OperatorsAndTruncation) {
    EXPECT_EQ(1, Type::Time(1999999).getTotalSeconds());
    EXPECT_EQ(-1, Type::Time(-1999999).getTotalSeconds());
    EXPECT_EQ(-1999, Type::Duration(-1999999).getTotalMilliseconds());

    Type::Time t(100);
    EXPECT_EQ(Type::Duration(-50), Type::Time(50) - t);
    EXPECT_EQ(Type::Time(70), t - Type::Duration(30));
    (t += Type::Duration(10)) += Type::Duration(1000);  // the second one acts on a copy
    EXPECT_EQ(Type::Time(110), t);
    EXPECT_EQ(Type::Time(105), t -= Type::Duration(5));
    EXPECT_TRUE(Type::Time(-1) < Type::Time(0));

    long long before = kelvo::Clock::now() / 1000;
    long long now = Type::Time::now().getTotalMicroseconds();
    EXPECT_LE(before, now);
    EXPECT_LE(now, kelvo::Clock::now() / 1000);
}

TEST(DurationArithmetic, Operators) {
    EXPECT_EQ(7200000000LL, Type::Duration::Hours(2).getTotalMicroseconds());
    EXPECT_EQ(-60000000LL, Type::Duration::Minutes(-1).getTotalMicroseconds());
    EXPECT_EQ(4000LL, Type::Duration::Milliseconds(4).getTotalMicroseconds());

    // Single precision: 123456789 is not a float, its neighbour 123456792 is.
    EXPECT_EQ(Type::Duration(123456792), Type::Duration(123456789) * 1.0f);
    EXPECT_EQ(Type::Duration(123456792), Type::Duration(123456789) / 1.0f);
    EXPECT_EQ(Type::Duration(-2), Type::Duration(-10) / 4.0f);
    EXPECT_EQ(Type::Duration(-3), Type::Duration(7) * -0.5f);

    Type::Duration d(8);
    (d *= 2.0f) *= 100.0f;
    EXPECT_EQ(Type::Duration(16), d);
    EXPECT_EQ(Type::Duration(4), d /= 4.0f);
    EXPECT_EQ(Type::Duration(1), d -= Type::Duration(3));
}

TEST(DurationSleep, WholeMillisecondsOnly) {
    auto sleptMilliseconds = [](Type::Duration duration) {
        auto start = std::chrono::steady_clock::now();
        duration.sleep();
        auto elapsed = std::chrono::steady_clock::now() - start;
        return std::chrono::duration_cast<std::chrono::milliseconds>(elapsed).count();
    };
    long long total = 0;  // rounding up would cost at least 20 ms
    for (int i = 0; i < 20; ++i) total += sleptMilliseconds(Type::Duration::Microseconds(999));
    EXPECT_LT(total, 20);
    long long slept = sleptMilliseconds(Type::Duration::Milliseconds(20));
    EXPECT_GE(slept, 20);
    EXPECT_LT(slept, 2000);

    // A negative duration must not wrap around into a sleep of weeks.
    std::promise<void> done;
    auto finished = done.get_future();
    std::thread([done = std::move(done)]() mutable {
        Type::Duration(-5000).sleep();
        done.set_value();
    }).detach();
    ASSERT_EQ(std::future_status::ready, finished.wait_for(std::chrono::seconds(2)));
}

TEST(StringHash, BitExactValuesAndSharedText) {
    EXPECT_EQ(0UL, StringHash().getHash());
    EXPECT_EQ(0UL, StringHash("").getHash());
    EXPECT_EQ(0x9e377a1aUL, StringHash("a").getHash());
    EXPECT_EQ(0x28cd94a53bUL, StringHash(std::string("ab")).getHash());
    EXPECT_EQ(0x9e3779a2UL, StringHash("\xE9").getHash());  // the byte counts as -23
    EXPECT_EQ(0x28cd94a4b2UL, StringHash("a\xE9").getHash());
    std::string withZero("a\0b", 3);
    EXPECT_NE(StringHash("a"), StringHash(withZero));

    StringHash name("process");
    StringHash copy = name;
    EXPECT_EQ(name.text.get(), copy.text.get());
    EXPECT_TRUE(copy == name);
    EXPECT_EQ("", StringHash(static_cast<const char*>(nullptr)).getText());
    std::ostringstream out;
    out << name;
    EXPECT_EQ("process", out.str());
}
