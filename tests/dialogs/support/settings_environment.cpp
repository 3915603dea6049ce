// Every dialog test writes its window placement into a directory of its own,
// never beside the test program.
#include <memory>

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

class SettingsDirectory : public ::testing::Environment {
public:
    void SetUp() override
    {
        dir = std::make_unique<QTemporaryDir>();
        qputenv("TAMERISK_SETTINGS_DIR", dir->path().toLocal8Bit());
    }
    void TearDown() override { dir.reset(); }

private:
    std::unique_ptr<QTemporaryDir> dir;
};

const auto* const kEnvironment = ::testing::AddGlobalTestEnvironment(new SettingsDirectory);

} // namespace
