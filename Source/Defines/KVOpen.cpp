#include "Defines/KVOpen.h"

#include "CFMethods/PropertyListText.h"
#include "Defines/KVPreferences.h"
#include "Platform/Alerts.h"
#include "Platform/Platform.h"
#include "Platform/Workspace.h"
#include "Utility/Text/Localization.h"
#include "Utility/Text/TextCompare.h"
#include "Utility/Text/URLFields.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XFileWriting.h"

#include <algorithm>

namespace
{
constexpr std::size_t kMostUnits = 8192;

constexpr bool IsLetter( char16_t inUnit )
{
    return ( inUnit >= u'a' and inUnit <= u'z' ) or ( inUnit >= u'A' and inUnit <= u'Z' );
}

constexpr bool IsOfScheme( char16_t inUnit )
{
    return IsLetter( inUnit ) or ( inUnit >= u'0' and inUnit <= u'9' ) or inUnit == u'+' or inUnit == u'-' or
        inUnit == u'.';
}

// "" for what is no URL: no scheme, nothing behind it, blanks or controls, or longer than any that is meant.
TextView SchemeOf( TextView inURL )
{
    const std::size_t colon = inURL.find( u':' );
    if ( inURL.size() > kMostUnits or colon == TextView::npos or colon + 1 == inURL.size() )
        return {};
    const TextView scheme = inURL.substr( 0, colon );
    const auto isBlank = []( char16_t unit ) { return unit <= 0x20 or ( unit >= 0x7F and unit <= 0xA0 ); };
    const bool isGood = not scheme.empty() and IsLetter( scheme[0] ) and std::ranges::all_of( scheme, IsOfScheme ) and
        std::ranges::none_of( inURL, isBlank );
    return isGood ? scheme : TextView();
}

// Programs register schemes of their own, and some do at once what the address says.
bool IsHarmless( TextView inScheme )
{
    constexpr TextView kHarmless[] = { u"http", u"https", u"mailto" };
    return std::ranges::any_of(
        kHarmless, [inScheme]( TextView scheme ) { return kvr_caseInsensitiveIsEqualToString( inScheme, scheme ); } );
}

bool UserAgrees( TextView inURL )
{
    const XAlert alert{ XAlertStyle::kWarning, kvr_localized( u"kvOpenURLQuestionTitle" ),
        kvr_localizedFormat( u"kvOpenURLQuestionTextFormat", ShownText( inURL ) ),
        { kvr_localized( u"kvCancelButton" ), kvr_localized( u"kvOpenURLQuestionButton" ) } };
    bool agrees = false;
    Platform::Current().Alerts().ShowAlert(
        alert, [&agrees]( std::optional<std::size_t> button ) { agrees = button == std::size_t( 1 ); } );
    return agrees;
}

bool OpenFolder( const std::filesystem::path& inFolder )
{
    XFileStatus facts;
    return XFileCalls::Current().GetPathFacts( inFolder, facts ) == 0 and facts.mKind == XFileStatus::Kind::kFolder and
        Platform::Current().Workspace().OpenFile( inFolder );
}
} // namespace

bool KVOpen::kvOpen( TextView inURL )
{
    const TextView scheme = SchemeOf( inURL );
    if ( scheme.empty() )
    {
        XErrorHandler::PrivateMaybeLogFormat( "display", "Failed attempt to open invalid URL of '%@'", inURL );
        return false;
    }
    return ( IsHarmless( scheme ) or UserAgrees( inURL ) ) and Platform::Current().Workspace().OpenURL( inURL );
}

bool KVOpen::kvOpenURL( TextView inURL )
{
    return kvOpen( inURL );
}

bool KVOpen::kvOpenKeyedURL( TextView inKey )
{
    return kvOpenURL( kvr_localized( inKey ) );
}

// The program comes without files of its own, so the folder is made when somebody asks.
bool KVOpen::ThirdPartyLicenses()
{
    const std::filesystem::path folder = KVPreferences::FilePath( u"Third Party Licenses" );
    const std::string text = UTF8FromText( kvr_localized( u"kvThirdPartyLicensesText" ) );
    auto error = MakeFolders( folder );
    if ( not error )
        error = XAtomicFile::Write( folder / "Third Party Licenses.txt",
            { reinterpret_cast<const std::uint8_t*>( text.data() ), text.size() }, XAtomicFile::Links::kReplace );
    if ( error )
        XErrorHandler::PrivateMaybeLogFormat( "display", "Can't show the licences: %@", error->Describe() );
    return not error and OpenFolder( folder );
}

bool KVOpen::LogsFolder()
{
    return OpenFolder( XErrorHandler::LogsFolder() );
}

bool KVOpen::PreferencesFolder()
{
    return OpenFolder( KVPreferences::FolderPath() );
}

Text KVOpen::WikiLinkURL( TextView inPage )
{
    const bool usesPort = KVPreferences::GetBoolean( KVPreferences::kUseWikiPort8443ID, false );
    return kvr_localizedFormat( u"kvWikiLinkFormat", usesPort ? u"8443-" : u"", encodeURLField( inPage ) );
}

Text KVOpen::WikiLinkURL( TextView inPage, TextView inAnchor )
{
    const Text page = WikiLinkURL( inPage );
    return inAnchor.empty() ? page : page + u"#" + encodeURLField( inAnchor );
}

bool KVOpen::OpenWikiLinkURL( TextView inPage )
{
    return kvOpenURL( WikiLinkURL( inPage ) );
}

bool KVOpen::OpenWikiLinkURL( TextView inPage, TextView inAnchor )
{
    return kvOpenURL( WikiLinkURL( inPage, inAnchor ) );
}
