#include "Macros/MMacroFileLoading.h"

#include "Actions/ActionLimits.h"
#include "CFMethods/PropertyListCodec.h"
#include "Defines/KVVersion.h"
#include "Macros/KVMacroEnableOverrides.h"
#include "Macros/MLoadObserver.h"
#include "Macros/MMacroDomain.h"
#include "Macros/MMacroFileAlerts.h"
#include "Macros/MMacroFileSaving.h"
#include "Macros/MMacroInsertion.h"
#include "Macros/MMacroPreferenceFile.h"
#include "Macros/SpotlightExport.h"
#include "Utility/Text/Localization.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XException.h"

#include <map>

namespace
{
constexpr char kNoMacrosFile[] = "it is a property list, but no macros file";

bool gIsSavingLatchedOff = false;
MMacroFileDataPtr gWholeData; // what the model last equalled

/// Counts what a load leaves out, by what it was. It looks at nothing else, for a load has to be fast.
class LossCounter final : public MLoadObserver
{
public:
    void DidDrop( const XPlistArray& inList, std::size_t inIndex, TextView ) override
    {
        ++mCounts[NameOf( inList.GetValueAt( inIndex ) )];
    }
    void DidReadOlderKey( const XPlistDictionary&, const XKey&, const XKey& ) override {}
    void DidUpgradeType( const XPlistDictionary&, TextView, TextView ) override {}
    void DidUpgradeValue( const XPlistDictionary&, const XKey&, TextView ) override {}
    void DidRepair( const XPlistDictionary&, const XKey&, MLoadRule, TextView ) override {}
    void DidReadUID( const XPlistDictionary&, const XText&, const XText& ) override {}

    [[nodiscard]] bool HasNone() const { return mCounts.empty(); }
    /// "actions: 3, triggers: 1"
    [[nodiscard]] Text Describe() const
    {
        Text text;
        for ( const auto& [key, count] : mCounts )
            text += ( text.empty() ? u"" : u", " ) + kvr_localizedFormat( key, count );
        return text;
    }

private:
    // The localised key of what the element was meant to be.
    static TextView NameOf( const __SafeCFPropertyList& inElement )
    {
        const XPlistDictionary* const element = inElement.AsDictionary();
        if ( not element )
            return u"kvLost5OthersFormat";
        if ( element->Contains( CFSTR( "MacroActionType" ) ) )
            return u"kvLost3ActionsFormat";
        if ( element->Contains( CFSTR( "MacroTriggerType" ) ) )
            return u"kvLost4TriggersFormat";
        if ( element->Contains( CFSTR( "Macros" ) ) or element->Contains( CFSTR( "SearchStrings" ) ) )
            return u"kvLost1GroupsFormat";
        if ( element->Contains( CFSTR( "Actions" ) ) and element->Contains( CFSTR( "Triggers" ) ) )
            return u"kvLost2MacrosFormat";
        return u"kvLost5OthersFormat";
    }

    std::map<TextView, std::size_t> mCounts;
};

/// What was understood only in part is kept before it is replaced, and the user told.
bool KeepWhatWasLost(
    const LossCounter& inLosses, const MMacroFileDataPtr& inData, const std::filesystem::path& inFile )
{
    const bool isNewer =
        MMacroDomain::Get()->GetMacroPreferencesVersion() > MMacroDomain::kCurrentMacroPreferencesVersion;
    if ( inLosses.HasNone() and not isNewer )
        return true;
    MMacroFileSaving::SetAsideBeforeWriting( SetAside::Kind::kMacrosFile, inData,
        inLosses.HasNone() ? Text( u"the macros file comes from a newer version" )
                           : u"the macros file was understood only in part: " + inLosses.Describe() );
    if ( inLosses.HasNone() )
        MMacroFileAlerts::Post( MMacroFileAlerts::kMacrosFileNewer, inFile, u"" );
    else
        MMacroFileAlerts::Post( MMacroFileAlerts::kMacrosFileInPart, inFile, inLosses.Describe() );
    return false;
}

bool IsMacrosFile( const __SafeCFPropertyList& inValue )
{
    CFContainer<XPlistArray> groups;
    return inValue.AsDictionary() and inValue.AsDictionary()->Get( CFSTR( "MacroGroups" ), groups );
}

/// For the time of a load: unless it ends well or leaves the model as it was, nothing is saved.
class LoadBracket
{
public:
    LoadBracket() { gIsSavingLatchedOff = true; }
    ~LoadBracket() { gIsSavingLatchedOff = not mIsWhole; }
    LoadBracket( const LoadBracket& ) = delete;
    LoadBracket& operator=( const LoadBracket& ) = delete;

    void ModelIsWhole() { mIsWhole = true; }
    void ModelIsAsBefore() { mIsWhole = not mWasLatchedOff; }

private:
    const bool mWasLatchedOff = gIsSavingLatchedOff;
    bool mIsWhole = false;
};
} // namespace

XFileContent MMacroFileLoading::ReadFile( const std::filesystem::path& inPath )
{
    constexpr std::size_t kMostBytes = std::size_t( 2 ) << 30;
    XFileStatus facts;
    if ( XFileCalls::Current().GetPathFacts( inPath, facts ) != 0 or facts.mKind == XFileStatus::Kind::kRegular )
        return ReadWholeFile( inPath, kMostBytes );
    XFileContent result;
    result.mError = XFileError{ "read", inPath, 0, "it isn't a file", {} };
    return result;
}

__SafeCFPropertyList MMacroFileLoading::Parse( const MMacroFileDataPtr& inData, std::string& outReason )
{
    XPlistReadResult result = ReadPropertyList( inData->Span(), kActionsPlistLimits );
    if ( result.mFault )
        outReason = result.mFault->Describe();
    return std::move( result.mValue );
}

__SafeCFPropertyList MMacroFileLoading::ParseMacrosFile( const MMacroFileDataPtr& inData, std::string& outReason )
{
    __SafeCFPropertyList value = Parse( inData, outReason );
    if ( value and not IsMacrosFile( value ) )
    {
        outReason = kNoMacrosFile;
        value = nullptr;
    }
    return value;
}

MMacroFileLoading::SharedFile MMacroFileLoading::JudgeSharedFile(
    const MMacroFileDataPtr& inData, __SafeCFPropertyList& outProperties, std::string& outReason )
{
    outProperties = Parse( inData, outReason );
    if ( outProperties.AsDictionary() and
        KVVersion::Compare( MMacroDomain::VersionFromPropertyList( outProperties ), MMacroDomain::GetOurVersion() ) >
            0 )
        return SharedFile::kNewer;
    if ( outProperties and IsMacrosFile( outProperties ) )
        return SharedFile::kTaken;
    if ( outProperties )
        outReason = kNoMacrosFile;
    return SharedFile::kUnreadable;
}

bool MMacroFileLoading::Load(
    const __SafeCFPropertyList& inValue, const MMacroFileDataPtr& inData, const std::filesystem::path& inFile )
{
    MMacroDomain& domain = *MMacroDomain::Get();
    const XText date = domain.GetLastSaveDate();
    LossCounter losses;
    LoadBracket bracket;
    try
    {
        std::optional<KVMacroEnableOverrides> overrides;
        // Taking them empties their file, which a value that throws below mustn't do.
        if ( IsMacrosFile( inValue ) )
            overrides = KVMacroEnableOverrides::Get();
        const MLoadObserver::Scope scope( losses );
        domain.LoadFromPropertyList( inValue, overrides ? &*overrides : nullptr );
    }
    catch ( const XException& )
    {
        // Thrown before anything went but the date; without it the next save would name no revision.
        domain.SetLastSaveDate( date );
        bracket.ModelIsAsBefore();
        throw;
    }
    catch ( ... )
    {
        if ( MMacroInsertion::CurrentlyInserting() )
            MMacroInsertion::Finish();
        domain.SetLastSaveDate( date );
        throw;
    }
    bracket.ModelIsWhole();
    gWholeData = inData;
    return KeepWhatWasLost( losses, inData, inFile );
}

void MMacroFileLoading::NoteWhole( const MMacroFileDataPtr& inData )
{
    gWholeData = inData;
}

bool MMacroFileLoading::IsSavingLatchedOff()
{
    return gIsSavingLatchedOff;
}

void MMacroFileLoading::LatchSavingOff()
{
    gIsSavingLatchedOff = true;
}

void MMacroFileLoading::Reset()
{
    gIsSavingLatchedOff = false;
    gWholeData = nullptr;
}

namespace
{
// The load has left half a model. The state that the model was in comes back if it can; until then nothing is saved.
void GoBackTo( const MMacroFileDataPtr& inWhole, const MMacroFileDataPtr& inFailed )
{
    using namespace MMacroFileSaving;
    SetAsideBeforeWriting( SetAside::Kind::kMacrosFile, inFailed, u"the macros couldn't be loaded from it" );
    try
    {
        std::string reason;
        if ( inWhole )
        {
            (void)MMacroFileLoading::Load(
                MMacroFileLoading::Parse( inWhole, reason ), inWhole, MMacroPreferenceFile::MacrosFilePath() );
            SetLastSaved( inWhole );
        }
    }
    catch ( ... )
    {
        XException::LogCurrent( u"ReloadAllMacros" );
    }
    MMacroFileAlerts::Post( MMacroFileAlerts::kMacrosLoadFailed, MMacroPreferenceFile::MacrosFilePath(), u"" );
}
} // namespace

void MMacroPreferenceFile::ReloadAllMacros()
{
    using namespace MMacroFileLoading;
    const auto data = SavedData();
    const auto before = gWholeData;
    std::string reason;
    try
    {
        const auto properties = data ? Parse( data, reason ) : __SafeCFPropertyList();
        XThrowIfNotText( properties, "properties" );
        (void)Load( properties, data, MacrosFilePath() );
        SpotlightExport::ExportToSpotlightIndex();
    }
    catch ( const XException& exception )
    {
        XErrorBeep( "Failed to reload macros" );
        exception.Log( u"ReloadAllMacros" );
        if ( data )
        {
            MMacroFileSaving::SetAsideBeforeWriting(
                SetAside::Kind::kMacrosFile, data, u"the macros couldn't be loaded from it" );
            MMacroFileAlerts::Post( MMacroFileAlerts::kMacrosLoadFailed, MacrosFilePath(), u"" );
        }
    }
    catch ( ... )
    {
        XErrorBeep( "Failed to reload macros" );
        XException::LogCurrent( u"ReloadAllMacros" );
        GoBackTo( before, data );
    }
    MMacroDomain* const theMacroDomain = MMacroDomain::Get();
    XAssertText( theMacroDomain->GetMacroPreferencesVersion() == MMacroDomain::kCurrentMacroPreferencesVersion,
        "theMacroDomain->GetMacroPreferencesVersion() == kCurrentMacroPreferencesVersion" );
}
