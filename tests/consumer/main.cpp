#include <tessarity/tessarity.h>

#include <kelvo/log.h>

int main() {
    Tessarity::Tessarity engine(1);
    if (!engine.createSource("camera")) return 1;
    boost::shared_ptr<Tessarity::Data> value = boost::make_shared<Tessarity::Data>(42);
    engine.setData("camera", value);
    boost::shared_ptr<Tessarity::Data> back =
        engine.getSourceData("camera", Tessarity::Type::Duration::Seconds(1));
    return back && int(*back) == 42 ? 0 : 2;
}
