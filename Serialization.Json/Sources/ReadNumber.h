#pragma once

#ifdef __cplusplus
extern "C"
{
#endif
    /// Stands in for strtod in cJSON's reader: reads the longest prefix that is a number by the JSON grammar, in every
    /// locale. Gives infinity when the number is too large. end is set to text when there is no number.
    double NfxReadNumber(const char* text, char** end);
#ifdef __cplusplus
}
#endif
