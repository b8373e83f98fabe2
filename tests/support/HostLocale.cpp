#include <gtest/gtest.h>

#include <clocale>
#include <cstdlib>

namespace
{
/// Runs the tests in the locale that the environment names: a host program may set any.
class HostLocale final : public testing::Environment
{
public:
    void SetUp() override
    {
        const char* const name = std::getenv("TEST_LOCALE");
        if (name != nullptr)
        {
            ASSERT_NE(std::setlocale(LC_ALL, name), nullptr) << "cannot set the locale " << name;
            ASSERT_STREQ(std::localeconv()->decimal_point, ",") << "the locale changes nothing";
        }
    }
};

[[maybe_unused]] const testing::Environment* const hostLocale = testing::AddGlobalTestEnvironment(new HostLocale());
} // namespace
