#include "MacrosWindow/MacroImport.h"
#include "Platform/Platform.h"
#include "Utility/Text/Localization.h"
#include "XCAF/ErrorAlert.h"

namespace
{
Text Counted( const char16_t* inKey, std::size_t inCount )
{
    return kvr_localizedFormat( Text( inKey ) + ( inCount == 1 ? u"OneFormat" : u"ManyFormat" ), inCount );
}

void AddCounted( std::vector<Text>& ioLines, const char16_t* inKey, std::size_t inCount )
{
    if ( inCount > 0 )
        ioLines.push_back( Counted( inKey, inCount ) );
}
} // namespace

std::vector<Text> MacroImport::Result::Describe() const
{
    if ( mError )
        return { *mError };
    std::vector<Text> lines;
    AddCounted( lines, u"ImportedMacros", mMacros.size() );
    AddCounted( lines, u"ImportedGroups", mGroups.size() );
    AddCounted( lines, u"ImportedSmartGroups", mSmartGroups.size() );
    AddCounted( lines, u"ImportedActions", mActions );
    if ( lines.empty() )
        lines.push_back( kvr_localized( u"ImportedNothing" ) );
    if ( mCameInDisabled and not mMacros.empty() )
        lines.push_back( kvr_localized( u"ImportedDisabled" ) );
    for ( const Joined& joined : mMerged )
        lines.push_back( kvr_localizedFormat(
            u"ImportMergedFormat", Counted( u"ImportCountMacros", joined.mMacros ), joined.mGroup.mName ) );
    for ( const Joined& joined : mEnabledInGroupsThatAreOff )
        lines.push_back( kvr_localizedFormat( u"ImportEnabledInGroupThatIsOffFormat",
            Counted( u"ImportCountMacros", joined.mMacros ), joined.mGroup.mName ) );
    for ( const Text& leftOut : mLeftOut )
        lines.push_back( kvr_localizedFormat( u"ImportLeftOutFormat", leftOut ) );
    if ( not mAbilities.IsEmpty() )
    {
        lines.push_back( kvr_localized( u"ImportAbilitiesHeader" ) );
        for ( const Text& line : mAbilities.Describe() )
            lines.push_back( u"    " + line );
    }
    return lines;
}

void MacroImport::TellUser( const Result& inResult )
{
    if ( inResult.mError )
    {
        ErrorAlert::ShowText(
            XAlertStyle::kWarning, nullptr, kvr_localized( u"ImportFailedHeader" ), *inResult.mError );
        return;
    }
    Text text;
    for ( const Text& line : inResult.Describe() )
        text += ( text.empty() ? u"" : u"\n" ) + line;
    Platform::Current().Alerts().Notify( kvr_localized( u"ImportSuccessTitle" ), text );
}
