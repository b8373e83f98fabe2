#include "support/SmallStack.h"

#include <gtest/gtest.h>

#include <pthread.h>

namespace Tests
{
namespace
{
void* Run(void* action)
{
    (*static_cast<const std::function<void()>*>(action))();
    return nullptr;
}
} // namespace

void RunOnSmallStack(const std::function<void()>& action)
{
    std::function<void()> copy(action);
    pthread_attr_t attributes;
    pthread_t thread;
    ASSERT_EQ(pthread_attr_init(&attributes), 0);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, 256 * 1024), 0);
    ASSERT_EQ(pthread_create(&thread, &attributes, &Run, &copy), 0);
    ASSERT_EQ(pthread_join(thread, nullptr), 0);
    ASSERT_EQ(pthread_attr_destroy(&attributes), 0);
}
} // namespace Tests
