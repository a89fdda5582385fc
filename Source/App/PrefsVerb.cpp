// "prefs": the settings. Their files are shared with the engine and with a running editor, who see a change at their next
// read, so nobody has to be asked.
#include "App/MacrosFile.h"
#include "App/PropertyListJSON.h"
#include "App/Verb.h"
#include "CFMethods/PropertyListText.h"
#include "Defines/KVPreferences.h"
#include "Utility/Text/TextCompare.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <fmt/format.h>

namespace
{
using KVPreferences::PreferenceID;
using KVPreferences::PreferenceRow;
using KVPreferences::PreferenceType;

/// A setting that was asked for by its key; of one that isn't known the domain was named.
struct Setting
{
    std::string mKey;
    std::string_view mDomain;
    const PreferenceRow* mRow = nullptr; ///< null when it isn't known

    [[nodiscard]] PreferenceID ID() const { return { mDomain, mKey }; }
    [[nodiscard]] PreferenceType Type() const { return mRow ? mRow->mType : PreferenceType::kAny; }
};

constexpr struct
{
    const char* mWord;
    std::string_view mDomain;
} kDomains[] = { { "editor", KVPreferences::kEditorDomain }, { "engine", KVPreferences::kEngineDomain },
    { "licence", KVPreferences::kLicenceDomain } };

std::string_view WordOfDomain( std::string_view inDomain )
{
    for ( const auto& [word, domain] : kDomains )
    {
        if ( domain == inDomain )
            return word;
    }
    return inDomain;
}

std::string ShownValue( const __SafeCFPropertyList& inValue )
{
    if ( const XPlistString* const text = inValue.AsString() )
        return text->GetUTF8();
    std::string json = WritePropertyListJSON( inValue );
    while ( not json.empty() and json.back() == '\n' )
        json.pop_back();
    return json;
}

/// Known settings whose keys are near to one that isn't.
std::string Suggestion( const std::string& inKey )
{
    constexpr std::size_t kMost = 5;
    std::vector<std::string> near;
    for ( const PreferenceRow& row : KVPreferences::AllPreferences() )
    {
        const Text key = TextFromUTF8( std::string( row.mID.Key().Name() ) ), asked = TextFromUTF8( inKey );
        if ( kvr_caseInsensitiveContainsString( key, asked ) or kvr_caseInsensitiveContainsString( asked, key ) )
            near.push_back( fmt::format( "“{}”", row.mID.Key().Name() ) );
    }
    if ( near.empty() or near.size() > kMost )
        return "“korvalen prefs list --all” shows those that are";
    return fmt::format( "did you mean {}?", fmt::join( near, " or " ) );
}

bool IsSecret( std::string_view inKey )
{
    return inKey.starts_with( "WebServerPassword" );
}

// ---------------------------------------------------------------- values out of arguments

std::optional<bool> BooleanOf( std::string inWord )
{
    std::transform( inWord.begin(), inWord.end(), inWord.begin(), []( unsigned char c ) { return std::tolower( c ); } );
    if ( inWord == "true" or inWord == "yes" or inWord == "on" or inWord == "1" )
        return true;
    if ( inWord == "false" or inWord == "no" or inWord == "off" or inWord == "0" )
        return false;
    return {};
}

template<class Number>
std::optional<Number> NumberOf( const std::string& inWord )
{
    Number number{};
    const auto [end, error] = std::from_chars( inWord.data(), inWord.data() + inWord.size(), number );
    return error == std::errc() and end == inWord.data() + inWord.size() ? std::optional( number ) : std::nullopt;
}

__SafeCFPropertyList JSONOf( const std::string& inWord )
{
    const XBytes bytes( inWord );
    return ReadPropertyListJSON( bytes.Span() ).mValue;
}

/// Null when the word is no value of the type.
__SafeCFPropertyList ValueOf( const std::string& inWord, PreferenceType inType )
{
    switch ( inType )
    {
    case PreferenceType::kBoolean:
        if ( const auto flag = BooleanOf( inWord ) )
            return __SafeCFPropertyList::Boolean( *flag );
        return {};
    case PreferenceType::kInteger:
        if ( const auto number = NumberOf<std::int64_t>( inWord ) )
            return __SafeCFPropertyList::Integer( *number );
        return {};
    case PreferenceType::kReal:
        if ( const auto number = NumberOf<double>( inWord ) )
            return __SafeCFPropertyList::Real( *number );
        return {};
    case PreferenceType::kText:
        break;
    case PreferenceType::kArray:
    {
        const __SafeCFPropertyList value = JSONOf( inWord );
        return value.AsArray() ? value : __SafeCFPropertyList();
    }
    case PreferenceType::kAny:
        // What isn't JSON is a text as it stands.
        if ( const __SafeCFPropertyList value = JSONOf( inWord ) )
            return value;
        break;
    }
    return __SafeCFPropertyList::String( TextFromUTF8( inWord ) );
}

constexpr const char* kTypeHints[] = { "any JSON, or a text", "true or false", "a whole number", "a number", "a text",
    "a JSON array" };
static_assert( std::size( kTypeHints ) == std::size( KVPreferences::kPreferenceTypeNames ) );

// ---------------------------------------------------------------- the verbs

/// One that names a setting.
class SettingVerb : public Verb
{
public:
    explicit SettingVerb( CLI::App& ioCommand ) : Verb( ioCommand )
    {
        ioCommand.add_option( "KEY", mKey, "The setting's key, as “korvalen prefs list --all” shows it" )
            ->required()
            ->type_name( "" );
        ioCommand.add_flag( "--force", mForce, "Take a key that isn't known; its --domain has to be named" );
        ioCommand.add_option( "--domain", mDomain, "Of a key that isn't known: editor, engine or licence" )
            ->type_name( "DOMAIN" )
            ->check( CLI::IsMember( { "editor", "engine", "licence" } ).description( "" ) );
    }

    ExitStatus Run( VerbContext& ioContext ) final
    {
        Output& output = ioContext.mOutput;
        Setting setting{ mKey, {}, KVPreferences::FindPreference( mKey ) };
        if ( setting.mRow )
            setting.mDomain = setting.mRow->mID.Domain();
        for ( const auto& [word, domain] : kDomains )
        {
            if ( not setting.mRow and mDomain == word )
                setting.mDomain = domain;
        }
        if ( setting.mRow and not mDomain.empty() and mDomain != WordOfDomain( setting.mDomain ) )
        {
            output.Complain(
                fmt::format( "“{}” is a setting of the {} domain", mKey, WordOfDomain( setting.mDomain ) ) );
            return ExitStatus::kWrongUsage;
        }
        if ( not setting.mRow and ( not mForce or setting.mDomain.empty() ) )
        {
            output.Complain( fmt::format( "there is no setting “{}”; {}{}", mKey, Suggestion( mKey ),
                mForce ? ", or name its domain by --domain" : "" ) );
            return ExitStatus::kFailed;
        }
        return Work( setting, output );
    }

protected:
    [[nodiscard]] virtual ExitStatus Work( const Setting& inSetting, Output& ioOutput ) = 0;

private:
    std::string mKey, mDomain;
    bool mForce = false;
};

class GetPrefVerb final : public SettingVerb
{
public:
    explicit GetPrefVerb( CLI::App& ioCommand ) : SettingVerb( ioCommand )
    {
        ioCommand.add_flag( "--json", mJSON, "Print the value as JSON" );
        ioCommand.footer( "What isn't set has its default, if there is one.\n"
                          "Example: korvalen prefs get MaximumUndoSize" );
    }

private:
    ExitStatus Work( const Setting& inSetting, Output& ioOutput ) override
    {
        __SafeCFPropertyList value = KVPreferences::GetPropertyList( inSetting.ID() );
        if ( not value and inSetting.mRow and not inSetting.mRow->mDefault.empty() )
            value = ValueOf( std::string( inSetting.mRow->mDefault ), inSetting.Type() );
        if ( not value )
        {
            ioOutput.Complain( fmt::format( "“{}” isn't set and has no default", inSetting.mKey ) );
            return ExitStatus::kFailed;
        }
        if ( mJSON or not value.AsString() )
            ioOutput.JSON( value );
        else
            ioOutput.Line( ShownValue( value ) );
        return ExitStatus::kDone;
    }

    bool mJSON = false;
};

class SetPrefVerb final : public SettingVerb
{
public:
    explicit SetPrefVerb( CLI::App& ioCommand ) : SettingVerb( ioCommand )
    {
        ioCommand.add_option( "VALUE", mValue, "By its type: true, 12, 0.5, a text, a JSON array" )
            ->required()
            ->type_name( "" );
        ioCommand.footer( "Example: korvalen prefs set MaximumUndoSize 500000000" );
    }

private:
    ExitStatus Work( const Setting& inSetting, Output& ioOutput ) override
    {
        const __SafeCFPropertyList value = ValueOf( mValue, inSetting.Type() );
        if ( not value )
        {
            ioOutput.Complain( fmt::format(
                "“{}” takes {}, not “{}”", inSetting.mKey, kTypeHints[std::size_t( inSetting.Type() )], mValue ) );
            return ExitStatus::kFailed;
        }
        if ( KVPreferences::Set( inSetting.ID(), value ) )
            return ExitStatus::kDone;
        ioOutput.Complain( fmt::format( "“{}” couldn't be written; check the folder {}", inSetting.mKey,
            QuotedPath( KVPreferences::ConfigurationFolder().native() ) ) );
        return ExitStatus::kFailed;
    }

    std::string mValue;
};

class RemovePrefVerb final : public SettingVerb
{
public:
    explicit RemovePrefVerb( CLI::App& ioCommand ) : SettingVerb( ioCommand )
    {
        ioCommand.footer( "The default counts again.\nExample: korvalen prefs remove MaximumUndoSize" );
    }

private:
    ExitStatus Work( const Setting& inSetting, Output& ioOutput ) override
    {
        if ( not KVPreferences::GetPropertyList( inSetting.ID() ) )
        {
            ioOutput.Complain( fmt::format( "“{}” isn't set", inSetting.mKey ) );
            return ExitStatus::kFailed;
        }
        if ( KVPreferences::Remove( inSetting.ID() ) )
            return ExitStatus::kDone;
        ioOutput.Complain( fmt::format( "“{}” couldn't be removed; check the folder {}", inSetting.mKey,
            QuotedPath( KVPreferences::ConfigurationFolder().native() ) ) );
        return ExitStatus::kFailed;
    }
};

class ListPrefsVerb final : public Verb
{
public:
    explicit ListPrefsVerb( CLI::App& ioCommand ) : Verb( ioCommand )
    {
        ioCommand.add_flag( "--all", mAll, "Those that aren't set, too, with their types and defaults" );
        ioCommand.add_flag( "--json", mJSON, "Print the facts as JSON" );
        ioCommand.footer( "Passwords aren't shown.\nExample: korvalen prefs list" );
    }

    ExitStatus Run( VerbContext& ioContext ) override
    {
        for ( const PreferenceRow& row : KVPreferences::AllPreferences() )
        {
            const std::string key( row.mID.Key().Name() );
            Tell( { key, row.mID.Domain(), &row }, KVPreferences::GetPropertyList( row.mID ), ioContext.mOutput );
        }
        for ( const auto& [word, domain] : kDomains )
            TellUnknown( domain, ioContext.mOutput );
        if ( mJSON )
            ioContext.mOutput.JSON( mFacts.Seal() );
        else if ( mTold == 0 )
            ioContext.mOutput.Complain( "nothing is set; --all shows what can be" );
        return ExitStatus::kDone;
    }

private:
    // Other programs, and later versions of this one, keep theirs in the same files.
    void TellUnknown( std::string_view inDomain, Output& ioOutput )
    {
        const auto path = KVPreferences::ConfigurationFolder() / ( std::string( inDomain ) + ".plist" );
        const XFileContent content = ReadWholeFile( path, FileInput::kMostBytes );
        if ( content.mError )
            return;
        const XPlistReadResult properties = ReadPropertyList( content.mBytes.Span() );
        const XPlistDictionary* const dictionary = properties.mValue ? properties.mValue.AsDictionary() : nullptr;
        if ( not dictionary )
        {
            ioOutput.Complain( fmt::format( "the settings file {} can't be understood", QuotedPath( path.native() ) ) );
            return;
        }
        for ( const auto& [key, value] : dictionary->GetEntries() )
        {
            if ( not KVPreferences::FindPreference( key->GetUTF8() ) )
                Tell( { key->GetUTF8(), inDomain, nullptr }, __SafeCFPropertyList( value ), ioOutput );
        }
    }

    void Tell( const Setting& inSetting, const __SafeCFPropertyList& inValue, Output& ioOutput )
    {
        if ( not inValue and not mAll )
            return;
        ++mTold;
        const bool isHidden = inValue and IsSecret( inSetting.mKey );
        if ( mJSON )
        {
            mFacts.Append( Facts( inSetting, isHidden ? __SafeCFPropertyList() : inValue, bool( inValue ) ) );
            return;
        }
        ioOutput.Text( inSetting.mKey, inValue ? Colour::kBold : Colour::kNone );
        if ( inValue )
            ioOutput.Text( " = " +
                ( isHidden                   ? "(hidden)"
                        : inValue.AsString() ? ShownValue( inValue )
                                             : BriefText( inValue ) ) );
        ioOutput.Line( Remark( inSetting ) );
    }

    [[nodiscard]] std::string Remark( const Setting& inSetting ) const
    {
        if ( not inSetting.mRow )
            return fmt::format( "  (not known, {})", WordOfDomain( inSetting.mDomain ) );
        if ( not mAll )
            return {};
        return fmt::format( "  ({}, {}{})", WordOfDomain( inSetting.mDomain ),
            KVPreferences::kPreferenceTypeNames[std::size_t( inSetting.Type() )],
            inSetting.mRow->mDefault.empty() ? "" : fmt::format( ", default {}", inSetting.mRow->mDefault ) );
    }

    static __SafeCFPropertyList Facts( const Setting& inSetting, const __SafeCFPropertyList& inValue, bool inIsSet )
    {
        XMutableDictionary facts;
        facts.SetText( CFSTR( "key" ), TextFromUTF8( inSetting.mKey ) );
        facts.SetText( CFSTR( "domain" ), TextFromUTF8( std::string( inSetting.mDomain ) ) );
        facts.SetBoolean( CFSTR( "set" ), inIsSet );
        facts.SetBoolean( CFSTR( "known" ), inSetting.mRow != nullptr );
        facts.Set( CFSTR( "value" ), inValue );
        if ( inSetting.mRow )
        {
            facts.SetText( CFSTR( "type" ),
                TextFromUTF8( std::string( KVPreferences::kPreferenceTypeNames[std::size_t( inSetting.Type() )] ) ) );
            if ( not inSetting.mRow->mDefault.empty() )
                facts.Set( CFSTR( "default" ), ValueOf( std::string( inSetting.mRow->mDefault ), inSetting.Type() ) );
        }
        return facts.Seal();
    }

    bool mAll = false, mJSON = false;
    std::size_t mTold = 0;
    XMutableArray mFacts;
};
} // namespace

void AddPrefsVerb( CLI::App& ioProgram, VerbList& ioVerbs )
{
    CLI::App& prefs = *ioProgram.add_subcommand( "prefs", "Look at settings, and change them" );
    prefs.require_subcommand( 1 );
    prefs.footer( "Example: korvalen prefs set MaximumUndoSize 500000000" );
    const auto command = [&prefs]( const char* name, const char* description ) -> CLI::App& {
        return *prefs.add_subcommand( name, description )->group( "Verbs" );
    };
    ioVerbs.push_back( std::make_unique<ListPrefsVerb>( command( "list", "List the settings that are set" ) ) );
    ioVerbs.push_back( std::make_unique<GetPrefVerb>( command( "get", "Print the value of a setting" ) ) );
    ioVerbs.push_back( std::make_unique<SetPrefVerb>( command( "set", "Set a setting" ) ) );
    ioVerbs.push_back( std::make_unique<RemovePrefVerb>( command( "remove", "Forget what a setting was set to" ) ) );
}
