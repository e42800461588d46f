// An example plug-in module: loaded with Tessarity::loadProgramFromFile("…/x.so") or the
// statement `import file { …/x.so }`, it adds a filter and a source to the engine.
#include <tessarity/tessarity.h>

namespace {

// "Scale": multiplies a number by a factor, 2 unless given.
class Scale : public Tessarity::UserFilter {
public:
    std::string getName() override { return "Scale"; }
    std::string getDescription() override { return "Multiplies a number by a factor."; }
    std::vector<std::string> getInputs() override {
        return {"in [Integer Float Double]", "optional factor [Float]"};
    }
    std::vector<std::string> getOutputs() override { return {"out"}; }
    std::vector<boost::shared_ptr<Tessarity::Data>> apply(
        const std::vector<boost::shared_ptr<Tessarity::Data>>& inputs) override {
        const double factor = inputs[1] ? double(*inputs[1]) : 2.0;
        return {boost::make_shared<Tessarity::Data>(double(*inputs[0]) * factor)};
    }
};

}  // namespace

// The engine passes its Tessarity* as the handle.
extern "C" void tessarityInit(void* handle) {
    Tessarity::Tessarity* engine = static_cast<Tessarity::Tessarity*>(handle);
    engine->createFilter(boost::make_shared<Scale>());
    engine->createSource("scale_factor");
}
