// A custom icon is kept as its fields, in text, and taken apart only when somebody asks: so
// shapes, numbers and extra fields that other versions write survive a load and a save.
#include "XCAF/XIcon.h"

#include "XCAF/XErrorHandler.h"

#include <algorithm>
#include <atomic>
#include <charconv>
#include <map>
#include <mutex>

namespace
{
constexpr TextView kInternalPrefix = u"KVEP-";
constexpr TextView kKeyboardPrefix = u"KVKL-";
constexpr TextView kEarlierPrefix = u"KVEC-";
constexpr TextView kCharacterPrefix = u"KVEC=";
constexpr TextView kMarker = u"KVEC";
constexpr TextView kColorPrefix = u"KVCOLOR:";

// The fields of a custom icon.
enum : std::size_t {
    kMarkerField,
    kShapeField,
    kColorField,
    kTextField,
    kNumberField,
    kStyleField = 7,
    kTextColorField
};

std::atomic<const XInternalIconNames*> gInternalNames{ nullptr };

std::vector<Text> Split( TextView inText, char16_t inSeparator )
{
    std::vector<Text> fields;
    for ( ;; )
    {
        const auto end = inText.find( inSeparator );
        fields.emplace_back( inText.substr( 0, end ) );
        if ( end == TextView::npos )
            return fields;
        inText.remove_prefix( end + 1 );
    }
}

Text Join( std::span<const Text> inFields, char16_t inSeparator )
{
    Text result;
    for ( std::size_t i = 0; i < inFields.size(); ++i )
    {
        if ( i > 0 )
            result += inSeparator;
        result += inFields[i];
    }
    return result;
}

std::optional<std::int64_t> WholeNumber( TextView inText )
{
    const std::string text = UTF8FromText( inText );
    std::int64_t value = 0;
    const auto [stop, error] = std::from_chars( text.data(), text.data() + text.size(), value );
    if ( error != std::errc() or stop != text.data() + text.size() )
        return std::nullopt;
    return value;
}

Text NumberText( std::int64_t inValue )
{
    return TextFromASCII( std::to_string( inValue ) );
}

/// The fields of the earlier form, whose separator could stand in the character itself: the fields
/// before it are counted from the left and those behind it from the right.
std::vector<Text> FieldsOfEarlierForm( TextView inText )
{
    std::vector<Text> parts = Split( inText, u'-' );
    // A text with today's separators behind the earlier marker only needs the new marker.
    if ( inText.find( u'=' ) != TextView::npos and
        ( parts.size() <= kTextField or not parts[kColorField].starts_with( kColorPrefix ) ) )
        return Split( Text( kCharacterPrefix ).append( inText.substr( kEarlierPrefix.size() ) ), u'=' );
    if ( parts.size() <= kTextField )
        return parts;

    std::vector<Text> behind; // the character, last first
    const auto take = [&]( const Text& inField, std::size_t inParts ) {
        behind.push_back( inField );
        parts.resize( parts.size() - inParts );
    };
    if ( parts.size() > kTextField + 1 and parts.back().starts_with( kColorPrefix ) )
        take( Text( parts.back() ), 1 );
    // Three numbers and perhaps the style; a fifth number is the character. The sign of a negative
    // number made an empty part, as a hyphen for a character does; the latter has no number before it.
    for ( int numbers = 0; numbers < 4 and parts.size() > kTextField + 1 and WholeNumber( parts.back() ); ++numbers )
    {
        const std::size_t last = parts.size() - 1;
        if ( last >= kTextField + 2 and parts[last - 1].empty() and WholeNumber( parts[last - 2] ) )
            take( u'-' + parts.back(), 2 );
        else
            take( Text( parts.back() ), 1 );
    }

    const Text character = Join( std::span( parts ).subspan( kTextField ), u'-' );
    parts.resize( kTextField );
    parts.push_back( EncodeEquals( character ) );
    parts.insert( parts.end(), behind.rbegin(), behind.rend() );
    return parts;
}

std::mutex gKeyboardIconsMutex;
std::map<Text, XIcon, std::less<>> gKeyboardIcons;
} // namespace

struct XIcon::State
{
    XIconSaveFormat mSaveFormat = XIconSaveFormat::kCantSave;
    bool mDimmed = false;
    XImage mImage;
    XText mName;               // of a built-in icon; the id of a keyboard layout
    XText mSecondPart;         // of a built-in icon
    std::vector<Text> mFields; // of a custom icon, the marker first and the character encoded
    std::vector<XIcon> mLayers;

    friend bool operator==( const State&, const State& ) = default;
};

bool operator==( const XImage& a, const XImage& b )
{
    return a.mSource == b.mSource and a.mName == b.mName and
        __SafeCFPropertyList( a.mBytes ).Equals( __SafeCFPropertyList( b.mBytes ) );
}

bool operator==( const XIcon& a, const XIcon& b )
{
    return a.mState == b.mState or ( a.mState and b.mState and *a.mState == *b.mState );
}

XImage XImage::FromBytes( CFContainer<XPlistData> inBytes )
{
    const Source source = inBytes ? Source::kBytes : Source::kNone;
    return { source, std::move( inBytes ), {} };
}

XImage XImage::FromSource( Source inSource, XText inName )
{
    return inName.IsEmpty() ? XImage() : XImage{ inSource, {}, std::move( inName ) };
}

void XInternalIconNames::Install( const XInternalIconNames* inNames )
{
    gInternalNames.store( inNames );
}

XIconFont IconFontWithSize( XIconFontStyle inStyle, double inSize )
{
    switch ( inStyle )
    {
    case XIconFontStyle::kEmoji:
        return { u"Apple Color Emoji", inSize };
    case XIconFontStyle::kChancery:
        return { u"Apple Chancery", inSize };
    case XIconFontStyle::kPlain:
        break;
    }
    return { {}, inSize };
}

XIcon::XIcon( const XImage& inImage )
{
    if ( not inImage.Defined() )
        return;
    auto state = std::make_shared<State>();
    state->mSaveFormat = inImage.mBytes ? XIconSaveFormat::kImage : XIconSaveFormat::kCantSave;
    state->mImage = inImage;
    mState = std::move( state );
}

XIcon::XIcon( XIconKeyboardLayout, TextView inID )
{
    {
        const std::scoped_lock lock( gKeyboardIconsMutex );
        if ( const auto found = gKeyboardIcons.find( inID ); found != gKeyboardIcons.end() )
        {
            *this = found->second;
            return;
        }
    }
    auto state = std::make_shared<State>();
    state->mSaveFormat = XIconSaveFormat::kKeyboardLayout;
    state->mName = XText( inID );
    mState = std::move( state );
}

void XIcon::CacheAllKeyboardLayoutIcons( std::span<const Text> inLayouts )
{
    std::map<Text, XIcon, std::less<>> icons;
    for ( const Text& layout : inLayouts )
        icons.emplace( layout, XIcon( XIconKeyboardLayout(), layout ) );
    const std::scoped_lock lock( gKeyboardIconsMutex );
    gKeyboardIcons = std::move( icons );
}

XIcon::XIcon( XIconCustomIconShape inShape, const XColor& inColor, XIconFontStyle inStyle, TextView inText,
    const XColor& inTextColor, std::array<std::int64_t, 3> inNumbers )
{
    auto state = std::make_shared<State>();
    state->mSaveFormat = XIconSaveFormat::kCharacter;
    state->mFields = { Text( kMarker ), Text( kXIconCustomIconShapeNames[std::size_t( inShape )] ), inColor.GetText(),
        EncodeEquals( inText ), NumberText( inNumbers[0] ), NumberText( inNumbers[1] ), NumberText( inNumbers[2] ),
        NumberText( std::int64_t( inStyle ) ), inTextColor.GetText() };
    mState = std::move( state );
}

XIcon::XIcon( const XIcon& inBackground, const XIcon& inForeground )
{
    XAssertText( inBackground.Defined(), "backgroundIcon.Defined()" );
    XAssertText( inForeground.Defined(), "foregroundIcon.Defined()" );
    *this = Composite( { inBackground, inForeground } );
}

XIcon::XIcon( const XIcon& inBackground, const XIcon& inForeground1, const XIcon& inForeground2 )
{
    XAssertText( inBackground.Defined(), "backgroundIcon.Defined()" );
    XAssertText( inForeground1.Defined(), "foregroundIcon1.Defined()" );
    XAssertText( inForeground2.Defined(), "foregroundIcon2.Defined()" );
    *this = Composite( { inBackground, inForeground1, inForeground2 } );
}

XIcon XIcon::Composite( std::initializer_list<XIcon> inLayers )
{
    auto state = std::make_shared<State>();
    std::copy_if( inLayers.begin(), inLayers.end(), std::back_inserter( state->mLayers ),
        []( const XIcon& inIcon ) { return inIcon.Defined(); } );
    return state->mLayers.empty() ? XIcon() : XIcon( std::move( state ) );
}

XIcon XIcon::InternalIcon( TextView inName )
{
    return inName.empty() ? XIcon() : FromInternalText( inName );
}

XIcon XIcon::PlainTextIcon()
{
    return InternalIcon( u"PlainText" );
}

XIcon XIcon::StyledTextIcon()
{
    return InternalIcon( u"StyledText" );
}

XIcon XIcon::FromInternalText( TextView inRest )
{
    const auto end = inRest.find( u'-' );
    auto state = std::make_shared<State>();
    state->mSaveFormat = XIconSaveFormat::kInternal;
    state->mName = XText( inRest.substr( 0, end ) );
    if ( end != TextView::npos )
        state->mSecondPart = XText( inRest.substr( end + 1 ) );
    const auto* names = gInternalNames.load();
    if ( not names or names->IsKnown( inRest.substr( 0, end ), state->mSecondPart ) )
        state->mImage = XImage::FromSource( XImage::Source::kResource, XText( inRest ) );
    return XIcon( std::move( state ) );
}

XIconSaveFormat XIcon::GetSaveFormat() const
{
    return mState ? mState->mSaveFormat : XIconSaveFormat::kCantSave;
}

bool XIcon::IsApplicationIcon() const
{
    return mState and mState->mImage.mSource == XImage::Source::kApplication;
}

bool XIcon::IsInternalIcon() const
{
    return GetSaveFormat() == XIconSaveFormat::kInternal;
}

bool XIcon::IsCustomShapeIcon() const
{
    return GetSaveFormat() == XIconSaveFormat::kCharacter;
}

bool XIcon::IsDimmed() const
{
    return mState and mState->mDimmed;
}

XImage XIcon::GetImage() const
{
    return mState ? mState->mImage : XImage();
}

XText XIcon::GetInternalName() const
{
    return IsInternalIcon() ? mState->mName : XText();
}

XText XIcon::GetInternalSecondPart() const
{
    return IsInternalIcon() ? mState->mSecondPart : XText();
}

XText XIcon::GetKeyboardLayout() const
{
    return GetSaveFormat() == XIconSaveFormat::kKeyboardLayout ? mState->mName : XText();
}

std::span<const XIcon> XIcon::GetLayers() const
{
    return mState ? std::span<const XIcon>( mState->mLayers ) : std::span<const XIcon>();
}

XIcon XIcon::WithDimming( bool inDimmed ) const
{
    if ( not mState or mState->mDimmed == inDimmed )
        return *this;
    auto state = std::make_shared<State>( *mState );
    state->mDimmed = inDimmed;
    return XIcon( std::move( state ) );
}

XIcon XIcon::DimmedIcon() const
{
    return WithDimming( true );
}

XIcon XIcon::UndimmedIcon() const
{
    return WithDimming( false );
}

__SafeCFPropertyList XIcon::GetSavedData( OnlySimpleSavedData inOnlySimple ) const
{
    const XIconSaveFormat mSaveFormat = GetSaveFormat();
    XAssert( mSaveFormat != XIconSaveFormat::kCantSave );
    switch ( mSaveFormat )
    {
    case XIconSaveFormat::kCantSave:
        break;
    case XIconSaveFormat::kInternal:
    {
        Text text = Text( kInternalPrefix ) + mState->mName.GetText();
        if ( not mState->mSecondPart.IsNull() )
            text += u'-' + mState->mSecondPart.GetText();
        return __SafeCFPropertyList::String( text );
    }
    case XIconSaveFormat::kKeyboardLayout:
        return __SafeCFPropertyList::String( Text( kKeyboardPrefix ) + mState->mName.GetText() );
    case XIconSaveFormat::kCharacter:
        return __SafeCFPropertyList::String( Join( mState->mFields, u'=' ) );
    case XIconSaveFormat::kImage:
        if ( inOnlySimple == OnlySimpleSavedData::kNo )
            return mState->mImage.mBytes;
        break;
    }
    return {};
}

XIcon XIcon::FromSavedData( const __SafeCFPropertyList& inSavedData )
{
    if ( const XPlistData* data = inSavedData.AsData() )
        return XIcon( XImage::FromBytes( CFContainer<XPlistData>::Share( data ) ) );

    const XPlistString* string = inSavedData.AsString();
    const Text text = string ? string->GetText() : Text();
    if ( text.starts_with( kInternalPrefix ) )
    {
        XIcon icon = FromInternalText( TextView( text ).substr( kInternalPrefix.size() ) );
        if ( not icon.GetImage().Defined() and XErrorHandler::MaybeShouldLog( "always" ) )
            XErrorHandler::PrivateLogEnabled( "always",
                kvr_format( u"XIcon::FromSavedData failed to find internal icon “%@” from “%@”", icon.GetInternalName(),
                    text ) );
        return icon;
    }
    if ( text.starts_with( kKeyboardPrefix ) )
        return XIcon( XIconKeyboardLayout(), TextView( text ).substr( kKeyboardPrefix.size() ) );
    if ( text.starts_with( kEarlierPrefix ) )
        return FromSavedCharacterData( Join( FieldsOfEarlierForm( text ), u'=' ) );
    if ( text.starts_with( kCharacterPrefix ) )
        return FromSavedCharacterData( text );

    const Text shown = string ? text
        : inSavedData         ? TextFromASCII( NameOf( inSavedData.GetType() ) )
                              : Text( u"(null)" );
    XErrorHandler::PrivateMaybeLogFormat( "always", "savedData is %@", shown );
    XAssertText( false, "false" );
    return {};
}

bool XIcon::CustomDataNeedsUpdating( const __SafeCFPropertyList& inSavedData )
{
    const XPlistString* string = inSavedData.AsString();
    return string and string->GetText().starts_with( kEarlierPrefix );
}

XIcon XIcon::FromSavedCharacterData( TextView inText )
{
    auto state = std::make_shared<State>();
    state->mSaveFormat = XIconSaveFormat::kCharacter;
    state->mFields = Split( inText, u'=' );
    return state->mFields[kMarkerField] == kMarker ? XIcon( std::move( state ) ) : XIcon();
}

std::optional<XIconCharacterData> XIcon::GetSavedCharacterData() const
{
    if ( not IsCustomShapeIcon() )
        return std::nullopt;
    const std::vector<Text>& fields = mState->mFields;
    XIconCharacterData data;
    if ( fields.size() > kShapeField )
    {
        const auto name = std::ranges::find( kXIconCustomIconShapeNames, TextView( fields[kShapeField] ) );
        if ( name != std::end( kXIconCustomIconShapeNames ) )
            data.mShape = XIconCustomIconShape( name - std::begin( kXIconCustomIconShapeNames ) );
    }
    if ( fields.size() > kColorField )
        data.mColor = XColor::FromText( fields[kColorField] );
    if ( fields.size() > kTextField )
        data.mText = DecodeEquals( fields[kTextField] );
    for ( std::size_t i = 0; i < data.mNumbers.size() and fields.size() > kNumberField + i; ++i )
        data.mNumbers[i] = WholeNumber( fields[kNumberField + i] ).value_or( data.mNumbers[i] );
    if ( fields.size() > kStyleField )
        data.mStyle = XIconFontStyle( WholeNumber( fields[kStyleField] ).value_or( 0 ) );
    if ( fields.size() > kTextColorField )
        data.mTextColor = XColor::FromText( fields[kTextColorField] );
    return data;
}

std::optional<XIconCharacterData> XIcon::GetSavedDataFromCharacterString( TextView inText )
{
    return FromSavedCharacterData( inText ).GetSavedCharacterData();
}

XIcon XIcon::WithNewTextCharacter( TextView inText ) const
{
    XAssert( IsCustomShapeIcon() );
    if ( not IsCustomShapeIcon() )
        return *this;
    auto state = std::make_shared<State>( *mState );
    // A text so short that it has no place for the character gets the default's fields up to there.
    const std::vector<Text> defaults = Split( kDefaultCustomIcon, u'=' );
    for ( std::size_t i = state->mFields.size(); i <= kTextField; ++i )
        state->mFields.push_back( defaults[i] );
    state->mFields[kTextField] = EncodeEquals( inText );
    return XIcon( std::move( state ) );
}

Text EncodeEquals( TextView inText )
{
    Text result;
    result.reserve( inText.size() );
    for ( const char16_t unit : inText )
    {
        if ( unit == u'#' )
            result += u"#1";
        else if ( unit == u'=' )
            result += u"#2";
        else
            result += unit;
    }
    return result;
}

Text DecodeEquals( TextView inText )
{
    Text result;
    result.reserve( inText.size() );
    for ( std::size_t i = 0; i < inText.size(); ++i )
    {
        const char16_t next = i + 1 < inText.size() ? inText[i + 1] : char16_t( 0 );
        if ( inText[i] == u'#' and ( next == u'1' or next == u'2' ) )
        {
            result += next == u'1' ? u'#' : u'=';
            ++i;
        }
        else
            result += inText[i];
    }
    return result;
}
