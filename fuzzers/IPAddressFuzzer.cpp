#include "support/Grammar.h"
#include "support/ValueText.h"
#include "system/Net/IPAddress.h"

void Fuzzing::Fuzz(std::string_view input)
{
    FuzzValueText<Nfx::System::Net::IPAddress>(input, Grammar::IsIPAddress(input));
}
