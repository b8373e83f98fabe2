#include "Os/IEvent.h"
#include "Os/IMutex.h"
#include "Os/IOs.h"
#include "Os/ISemaphore.h"

#include <gtest/gtest.h>

#include <string>

namespace Nfx::Os
{
namespace
{
/// The three kinds behind one face: each is made signalled.
struct SemaphoreKind
{
    static ISemaphore& Service() { return Platform().Semaphore(); }

    static bool Create(ObjectHandle& handle, std::string_view name, CreateStatus& status)
    {
        return Service().Create(handle, 1, 3, name, status);
    }
};

struct MutexKind
{
    static IMutex& Service() { return Platform().Mutex(); }

    static bool Create(ObjectHandle& handle, std::string_view name, CreateStatus& status)
    {
        return Service().Create(handle, false, name, status);
    }
};

struct EventKind
{
    static IEvent& Service() { return Platform().Event(); }

    static bool Create(ObjectHandle& handle, std::string_view name, CreateStatus& status)
    {
        return Service().Create(handle, true, false, name, status);
    }
};

template <class TKind>
class WaitObjectServiceTest : public testing::Test
{
protected:
    static CreateStatus StatusOfCreating(std::string_view name)
    {
        ObjectHandle handle = 0;
        CreateStatus status{};
        if (TKind::Create(handle, name, status))
        {
            EXPECT_TRUE(TKind::Service().Close(handle));
        }
        return status;
    }
};

using Kinds = testing::Types<SemaphoreKind, MutexKind, EventKind>;
TYPED_TEST_SUITE(WaitObjectServiceTest, Kinds);

TYPED_TEST(WaitObjectServiceTest, NamesAreCheckedAndHeldWhileAHandleIsOpen)
{
    const std::string name = "WaitObjectServiceTest.name";
    ObjectHandle handle = 0;
    EXPECT_FALSE(TypeParam::Service().Open(handle, name));
    EXPECT_EQ(this->StatusOfCreating(name), CreateStatus::Created);
    EXPECT_EQ(this->StatusOfCreating(name), CreateStatus::Created); // the name is free again
    EXPECT_EQ(this->StatusOfCreating(""), CreateStatus::Created);
    EXPECT_EQ(this->StatusOfCreating(std::string(128, 'n')), CreateStatus::Created);
    EXPECT_EQ(this->StatusOfCreating(std::string(129, 'n')), CreateStatus::NameTooLong);
    EXPECT_EQ(this->StatusOfCreating(std::string(1, '\0')), CreateStatus::Failed);
    EXPECT_EQ(this->StatusOfCreating("\xC3\xA4 \xE4"), CreateStatus::Created); // not UTF-8

    CreateStatus status{};
    ASSERT_TRUE(TypeParam::Create(handle, name, status));
    EXPECT_EQ(this->StatusOfCreating(name), CreateStatus::Existed);
    ObjectHandle opened = 0;
    EXPECT_TRUE(TypeParam::Service().Open(opened, name));
    TypeParam::Service().Close(handle);
    EXPECT_EQ(this->StatusOfCreating(name), CreateStatus::Existed);
    TypeParam::Service().Close(opened);
    EXPECT_FALSE(TypeParam::Service().Open(handle, name));
    EXPECT_FALSE(TypeParam::Service().Open(handle, ""));
}

TYPED_TEST(WaitObjectServiceTest, NameOfAnotherKindIsAFailure)
{
    const std::string name = "WaitObjectServiceTest.kind";
    ObjectHandle semaphore = 0;
    ObjectHandle event = 0;
    CreateStatus status{};
    ASSERT_TRUE(Platform().Semaphore().Create(semaphore, 0, 1, name + "1", status));
    ASSERT_TRUE(Platform().Event().Create(event, false, false, name + "2", status));
    const bool isSemaphore = std::is_same_v<TypeParam, SemaphoreKind>;
    const bool isEvent = std::is_same_v<TypeParam, EventKind>;
    EXPECT_EQ(this->StatusOfCreating(name + "1"), isSemaphore ? CreateStatus::Existed : CreateStatus::Failed);
    EXPECT_EQ(this->StatusOfCreating(name + "2"), isEvent ? CreateStatus::Existed : CreateStatus::Failed);
    ObjectHandle opened = 0;
    EXPECT_FALSE(TypeParam::Service().Open(opened, isSemaphore ? name + "2" : (isEvent ? name + "1" : name + "2")));
    Platform().Semaphore().Close(semaphore);
    Platform().Event().Close(event);
}

TYPED_TEST(WaitObjectServiceTest, TimeoutBelowMinusOneWaitsForNothing)
{
    ObjectHandle handle = 0;
    CreateStatus status{};
    ASSERT_TRUE(TypeParam::Create(handle, "", status));
    EXPECT_FALSE(TypeParam::Service().Wait(handle, -2));
    EXPECT_TRUE(TypeParam::Service().Wait(handle, 0)); // so it was not taken
    TypeParam::Service().Close(handle);
}

TEST(SemaphoreServiceTest, ReleaseReportsItsStatus)
{
    ISemaphore& semaphores = Platform().Semaphore();
    ObjectHandle handle = 0;
    CreateStatus created{};
    ASSERT_TRUE(semaphores.Create(handle, 1, 3, "", created));
    std::int32_t previous = -1;
    ReleaseStatus status{};
    EXPECT_TRUE(semaphores.Release(handle, 2, previous, status));
    EXPECT_EQ(previous, 1);
    EXPECT_EQ(status, ReleaseStatus::Released);
    EXPECT_FALSE(semaphores.Release(handle, 1, previous, status));
    EXPECT_EQ(status, ReleaseStatus::Refused);
    EXPECT_FALSE(semaphores.Release(handle, 0, previous, status));
    EXPECT_EQ(status, ReleaseStatus::Failed);
    for (int taken = 0; taken < 3; ++taken)
    {
        EXPECT_TRUE(semaphores.Wait(handle, 0));
    }
    EXPECT_FALSE(semaphores.Wait(handle, 0));
    semaphores.Close(handle);
}

TEST(SemaphoreServiceTest, RefusesCountsThatMakeNoSense)
{
    for (const auto& [initial, maximum] : {std::pair{2, 1}, std::pair{0, 0}, std::pair{-1, 1}, std::pair{0, -1}})
    {
        ObjectHandle handle = 0;
        CreateStatus status{};
        EXPECT_FALSE(Platform().Semaphore().Create(handle, initial, maximum, "", status)) << initial << maximum;
        EXPECT_EQ(status, CreateStatus::Failed);
    }
}
} // namespace
} // namespace Nfx::Os
