#include "Discovery/MACAddress.h"
#include "support/Grammar.h"
#include "support/ValueText.h"
#include "system/Boolean.h"
#include "system/Int32.h"

void Fuzzing::Fuzz(std::string_view input)
{
    FuzzValueText<Zent::Discovery::MACAddress>(input, Grammar::IsMACAddress(input));
}
