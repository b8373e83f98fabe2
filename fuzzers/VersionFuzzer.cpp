#include "support/Grammar.h"
#include "support/ValueText.h"
#include "system/Boolean.h"
#include "system/Int32.h"
#include "system/Version.h"

void Fuzzing::Fuzz(std::string_view input)
{
    FuzzValueText<Nfx::System::Version>(input, Grammar::IsVersion(input));
}
