#pragma once

#include "system/ErrorCodes.h"
#include "system/Exception.h"

// The texts are part of the interface: hosts and logs show them letter for letter, spelling included.

namespace Nfx::System
{
NFX_EXCEPTION(SystemException, Exception, "System error.", ErrorCodes::System);
NFX_EXCEPTION(ApplicationException, Exception, "Error in the application.", ErrorCodes::Application);
NFX_EXCEPTION(ArgumentException,
              SystemException,
              "Value does not fall within the expected range.",
              ErrorCodes::Argument);
NFX_EXCEPTION(ArgumentNullException, ArgumentException, "Value cannot be null.", ErrorCodes::ArgumentNull);
NFX_EXCEPTION(ArgumentOutOfRangeException,
              ArgumentException,
              "Specified argument is out of range of valid values.",
              ErrorCodes::ArgumentOutOfRange);
NFX_EXCEPTION(IndexOutOfRangeException,
              SystemException,
              "Index was outside the bounds of the array.",
              ErrorCodes::IndexOutOfRange);
NFX_EXCEPTION(OutOfMemoryException,
              SystemException,
              "Insufficient memory to continue the execution of the program.",
              ErrorCodes::OutOfMemory);
NFX_EXCEPTION(InvalidCastException, SystemException, "Specified cast is not valid.", ErrorCodes::InvalidCast);
NFX_EXCEPTION(InvalidOperationException,
              SystemException,
              "Operation is not valid due to the current state of the object.",
              ErrorCodes::InvalidOperation);
NFX_EXCEPTION(NotSupportedException, SystemException, "Specified method is not supported.", ErrorCodes::NotSupported);
NFX_EXCEPTION(NullPointerException,
              SystemException,
              "Object pointer not set to an instance of an object.",
              ErrorCodes::NullPointer);
NFX_EXCEPTION(NullReferenceException,
              SystemException,
              "Object reference not set to an instance of an object.",
              ErrorCodes::NullReference);
NFX_EXCEPTION(ObjectClosedException,
              InvalidOperationException,
              "Cannot access a closed object.",
              ErrorCodes::ObjectClosed);

namespace IO
{
NFX_EXCEPTION(IOException, SystemException, "I/O error occured.", ErrorCodes::IO);
NFX_EXCEPTION(DirectoryNotFoundException,
              IOException,
              "Attempted to access a path that is not on the disk.",
              ErrorCodes::DirectoryNotFound);
NFX_EXCEPTION(FileNotFoundException, IOException, "Unable to find the specified file.", ErrorCodes::FileNotFound);
} // namespace IO

namespace Threading
{
NFX_EXCEPTION(SemaphoreFullException,
              SystemException,
              "Adding the specified countto the semaphore wold cause it to exceed its maximum count.",
              ErrorCodes::SemaphoreFull);
NFX_EXCEPTION(ThreadInterruptedException,
              SystemException,
              "Thread was interrupted from a waiting state.",
              ErrorCodes::ThreadInterrupted);
NFX_EXCEPTION(ThreadStateException,
              SystemException,
              "Thread was in an invalid state for the operation being executed.",
              ErrorCodes::ThreadState);
} // namespace Threading
} // namespace Nfx::System
