// examples/first_program.cpp: a value set on a source and read back.
//
//   application --setData--> [camera] --getSourceData--> application
//
#include <iostream>
#include <stdexcept>
#include <tessarity/tessarity.h>

int main() {
    Tessarity::Tessarity engine(2);  // two workers; 0 runs processes only when pulled
    engine.createSource("camera");

    auto value = boost::make_shared<Tessarity::Data>(42);
    value->setTimestamp(Tessarity::Type::Time::now());
    engine.setData("camera", value);

    boost::shared_ptr<Tessarity::Data> back =
        engine.getSourceData("camera", Tessarity::Type::Duration::Seconds(1));
    std::cout << back->toString() << std::endl;  // 42

    try {
        engine.setData("lens", value);  // unknown names throw std::invalid_argument
    } catch (const std::invalid_argument& error) {
        std::cout << error.what() << std::endl;
    }
}
