#include "Triggers/ApplicationTriggers.h"

#include "Utility/Text/DisplayStrings.h"
#include "Utility/Text/Localization.h"

#include <algorithm>

// Application

void TApplicationTrigger::DescribeFields( HFieldVisitor& inVisitor )
{
    mTarget.DescribeFields( inVisitor, "Target", "Application" );
    if ( inVisitor.IsReading() )
        ReadOlderFireType( inVisitor );
    inVisitor.Name( "FireType2", mFireType );
    inVisitor.Integer( "RepeatTime", mRepeatTime );
}

// Older files have fewer fire types and a flag that makes two of them go on. What they say stands where the
// current key is missing or unknown.
void TApplicationTrigger::ReadOlderFireType( HFieldVisitor& inVisitor )
{
    using Fire = ApplicationTriggerFireType;
    XText current;
    inVisitor.Text( "FireType2", current );
    if ( std::ranges::any_of( NamesOf( mFireType ), [&]( TextView name ) { return current.Equals( name ); } ) )
        return;
    bool repeats = false;
    inVisitor.Boolean( "TriggerRepeat", repeats );
    inVisitor.Name( "FireType", mFireType );
    if ( repeats and mFireType == Fire::kActivate )
        mFireType = Fire::kWhileActive;
    else if ( repeats and mFireType == Fire::kLaunch )
        mFireType = Fire::kWhileRunning;
    if ( inVisitor.HasKey( "TriggerRepeat" ) )
        inVisitor.NoteOlderKey( "TriggerRepeat", "FireType2" );
    if ( inVisitor.HasKey( "FireType" ) )
        inVisitor.NoteOlderKey( "FireType", "FireType2" );
}

namespace
{
constexpr TextView kApplicationTextKeys[] = {
    u"tApplicationTriggerLaunchesFormat",
    u"tApplicationTriggerActivatesFormat",
    u"tApplicationTriggerDeactivatesFormat",
    u"tApplicationTriggerQuitsFormat",
    u"tApplicationTriggerWhilteActiveFormat", // the key is spelt so
    u"tApplicationTriggerWhileRunningFormat",
};
static_assert( std::size( kApplicationTextKeys ) == std::size( kApplicationTriggerFireTypeNames ) );
} // namespace

Text TApplicationTrigger::GetDescription() const
{
    const Text name = mTarget.GetApplicationName();
    Text description = kvr_localizedFormat( kApplicationTextKeys[std::size_t( mFireType )],
        name.empty() ? TextView( kvr_localized( u"tCurrent" ) ) : TextView( name ) );
    if ( mFireType == ApplicationTriggerFireType::kWhileActive or
        mFireType == ApplicationTriggerFireType::kWhileRunning )
        description +=
            kvr_localizedFormat( u"tApplicationTriggerDescFormatRepeat", stringWithTimeInSeconds( mRepeatTime ) );
    return description;
}

// Focused Window

void TFocusedWindowTrigger::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "ChangeType", mChangeType );
}

Text TFocusedWindowTrigger::GetDescription() const
{
    // Every name begins with the stored spelling; the texts have the usual one.
    constexpr TextView kStored = u"Focussed";
    return kvr_localized(
        kvr_format( u"tFocusedWindowFocused%@", StoredName( mChangeType ).substr( kStored.size() ) ) );
}

Text TFocusedWindowTrigger::GetShortDescription() const
{
    return kvr_localized( u"tFocusedWindow_ShortDescription" );
}
