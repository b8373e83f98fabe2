#pragma once

#include "Page/PageModel.h"
#include "Programs/Mutex.h"

#include <string>
#include <utility>

namespace Zent::Discovery::Page
{
/// The model, which one thread changes and another one shows. Any thread.
class SharedModel final
{
public:
    explicit SharedModel(std::string run)
        : model(std::move(run))
    {
    }

    /// Gives what the function gives for the model, which nobody else has meanwhile.
    template <class TFunction>
    auto With(const TFunction& function)
    {
        const Programs::Lock guard(lock);
        return function(model);
    }

private:
    Programs::Mutex lock;
    PageModel model NFX_GUARDED_BY(lock);
};
} // namespace Zent::Discovery::Page
