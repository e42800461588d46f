// examples/hello.cpp: the C++ API on one page: an engine, a program given as text, a filter
// of the application's own, and a callback on a sink.
//
//   setData("name") --> [name] --> Greet (Greeting) --> greeting --> callback
//
#include <chrono>
#include <future>
#include <iostream>
#include <tessarity/tessarity.h>

using Tessarity::Data;

// Ports are declared as text: an input with the types it accepts, an output by its name.
class Greeting : public Tessarity::UserFilter {
public:
    std::string getName() override { return "Greeting"; }
    std::string getDescription() override { return "Hello, NAME!"; }
    std::vector<std::string> getInputs() override { return {"name [String]"}; }
    std::vector<std::string> getOutputs() override { return {"out"}; }
    // One value per input in, one per output out; called once each required input has a value.
    std::vector<boost::shared_ptr<Data>> apply(
        const std::vector<boost::shared_ptr<Data>>& inputs) override {
        const std::string name = *inputs[0];
        return {boost::make_shared<Data>("Hello, " + name + "!")};
    }
};

int main() {
    std::promise<std::string> greeted;  // outlives the engine, whose workers call back into it
    Tessarity::Tessarity engine(2);     // two workers run the processes that are due
    engine.createFilter(boost::make_shared<Greeting>());

    // The process runs Greeting whenever the source "name" gets a value ("~>").
    engine.loadProgram(R"(
        source name { }
        process Greet (Greeting, 3, 30.0) { name <= name; out => greeting; name ~> self }
    )");

    // The callback runs on the worker that computed the value.
    std::future<std::string> greeting = greeted.get_future();
    engine.createEvent("Greet:greeting",
                       Tessarity::Tessarity::Callback([&greeted](boost::shared_ptr<Data> value) {
                           greeted.set_value(value->toString());
                       }));

    auto name = boost::make_shared<Data>("world");
    name->setTimestamp(Tessarity::Type::Time::now());
    engine.setData("name", name);

    if (greeting.wait_for(std::chrono::seconds(10)) != std::future_status::ready) return 1;
    std::cout << greeting.get() << std::endl;  // Hello, world!
}
