// examples/capture_log.cpp: the engine's diagnostics, caught by the application.
//
//   application --createSource("camera") twice--> engine --log line--> handler
//
#include <iostream>
#include <kelvo/log.h>
#include <tessarity/tessarity.h>

int main() {
    kelvo::log::setVerbosity(2);  // default writer: errors and worse only
    kelvo::log::setHandler([](int level, const std::string& category, const std::string& message) {
        // every line of every level, on the thread that logs it
        std::cout << level << " " << category << ": " << message << std::endl;
    });
    Tessarity::Tessarity engine(0);
    engine.createSource("camera");
    engine.createSource("camera");  // logs that the source already exists
    kelvo::log::setHandler(kelvo::log::Handler());  // back to the default writer
}
