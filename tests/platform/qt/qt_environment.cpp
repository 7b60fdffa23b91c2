#include <QGuiApplication>
#include <memory>

namespace ferrowyn {
namespace {

/// The toolkit's application, without a display, for all tests of one program.
class QtEnvironment final : public testing::Environment {
public:
    void SetUp() override {
        qputenv("QT_QPA_PLATFORM", "offscreen");
        application_ = std::make_unique<QGuiApplication>(argumentCount_, arguments_);
    }
    void TearDown() override { application_.reset(); }

private:
    int argumentCount_ = 1;
    char name_[5] = "test";
    char* arguments_[2] = {name_, nullptr};
    std::unique_ptr<QGuiApplication> application_;
};

[[maybe_unused]] const auto* const environment = testing::AddGlobalTestEnvironment(new QtEnvironment);

}  // namespace
}  // namespace ferrowyn
