#include "Macros/MMacroPreferenceFile.h"

#include <utility>

namespace
{
bool gLoadAllMacrosNeedsSave = false;
}

void MMacroPreferenceFile::SetLoadAllMacrosNeedsSave()
{
    gLoadAllMacrosNeedsSave = true;
}

bool MMacroPreferenceFile::TakeLoadAllMacrosNeedsSave()
{
    return std::exchange( gLoadAllMacrosNeedsSave, false );
}
