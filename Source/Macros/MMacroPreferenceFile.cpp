#include "Macros/MMacroPreferenceFile.h"

#include "Defines/KVPreferences.h"
#include "Macros/MMacroApplication.h"
#include "Macros/MMacroDomain.h"
#include "Utility/Work/Work.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XException.h"
#include "XCAF/XFileWriting.h"

#include <utility>

namespace
{
bool gLoadAllMacrosNeedsSave = false;
MMacroFileDataPtr gPrivateLastSavedData;

class MacroDataQueue
{
public:
    explicit MacroDataQueue( XWork& inWork ) : mQueue( inWork.MakeSerialQueue( u"com.tessarine.korvalen.MacroData" ) )
    {}
    [[nodiscard]] XQueue& Queue() const { return *mQueue; }

private:
    std::shared_ptr<XQueue> mQueue;
};

XQueue& Queue()
{
    return XWork::Current().Shared<MacroDataQueue>().Queue();
}

void SaveMacroData( const MMacroFileDataPtr& inData )
{
    XAssertText( inData, "inData" );
    gPrivateLastSavedData = inData;
    Queue().Async( [inData] {
        if ( const auto error = XAtomicFile::Write( MMacroPreferenceFile::MacrosFilePath(), inData->Span() ) )
            XErrorHandler::PrivateMaybeLogFormat(
                "always", "Preference write failed with error: %@; %@", error->Describe(), "" );
    } );
}
} // namespace

std::filesystem::path MMacroPreferenceFile::MacrosFilePath()
{
    return KVPreferences::FilePath( u"Korvalen Macros.plist" );
}

void MMacroPreferenceFile::SaveAllMacros()
{
    gLoadAllMacrosNeedsSave = false;
    SaveMacroData(
        std::make_shared<const MMacroFileData>( WriteBinaryPropertyList( MMacroDomain::Get()->GetPropertyList() ) ) );
}

void MMacroPreferenceFile::ReloadAllMacros()
{
    try
    {
        const auto properties = ReadPropertyList( gPrivateLastSavedData->Span() );
        XThrowIfNotText( properties.mValue, "properties" );
        MMacroDomain::Get()->LoadFromPropertyList( properties.mValue );
    }
    catch ( const XException& )
    {
        XErrorBeep( "Failed to reload macros" );
    }
}

void MMacroPreferenceFile::FinalSaveAllMacros()
{
    SaveAllMacros();
    WaitForQueue();
}

void MMacroPreferenceFile::WaitForQueue()
{
    Queue().Sync( [] {} );
}

MMacroFileDataPtr MMacroPreferenceFile::SavedData()
{
    return gPrivateLastSavedData;
}

void MMacroPreferenceFile::UndoRedoMacroData( const MMacroFileDataPtr& inData )
{
    SaveMacroData( inData );
    WaitForQueue();
}

void MMacroPreferenceFile::SaveRemoteMacroShareFileData( const MMacroFileDataPtr& inData )
{
    SaveMacroData( inData );
    WaitForQueue();
    XWork::Current().MainQueue()->Async( [] { MMacroApplication::Current().HandleReloadMacros(); } );
}

bool MMacroPreferenceFile::CopyMacroShareFileToRemote( const std::filesystem::path& inPath )
{
    return gPrivateLastSavedData and not XAtomicFile::Write( inPath, gPrivateLastSavedData->Span() );
}

void MMacroPreferenceFile::SetLoadAllMacrosNeedsSave()
{
    gLoadAllMacrosNeedsSave = true;
}

bool MMacroPreferenceFile::RevertToRevision( TextView inDate )
{
    XFileContent revision = ReadWholeFile(
        KVPreferences::FilePath( u"Revisions Version 9", Text( inDate ) + u".plist" ), XPlistLimits().mMaxBytes );
    if ( revision.mError or not ReadPropertyList( revision.mBytes.Span() ).mValue )
        return false;
    SaveMacroData( std::make_shared<const MMacroFileData>( std::move( revision.mBytes ) ) );
    Queue().Async(
        [] { XWork::Current().MainQueue()->Async( [] { MMacroApplication::Current().HandleReloadMacros(); } ); } );
    return true;
}

bool MMacroPreferenceFile::TakeLoadAllMacrosNeedsSave()
{
    return std::exchange( gLoadAllMacrosNeedsSave, false );
}
