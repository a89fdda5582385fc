#include "Actions/MacroActions.h"

#include "Actions/DescriptionText.h"
#include "Macros/MMacroInsertion.h"
#include "Utility/Text/Localization.h"
#include "XCAF/XErrorHandler.h"

namespace
{
// A macro that came along in the insertion may have got another UID by it.
void FollowMapping( XText& ioUID, const char* inName )
{
    XAssertText( not ioUID.IsNull(), inName );
    if ( not ioUID.IsNull() )
        ioUID = MMacroInsertion::GetMapping( ioUID );
}
} // namespace

// Execute Macro

void AExecuteMacro::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "MacroUID", mMacroUID, { .mRequiredAs = "macroUID", .mIsUID = true } );
    inVisitor.Boolean( "UseParameter", mUseParameter );
    inVisitor.Text( "Parameter", mParameter );
    inVisitor.Boolean( "Asynchronously", mAsynchronously );
}

void AExecuteMacro::UpdateForPasteOrAdd()
{
    FollowMapping( mMacroUID, "mMacroUID" );
}

std::vector<Text> AExecuteMacro::GetAddActionByNameExtraSearchString() const
{
    return { u"run", u"trigger" };
}

Text AExecuteMacro::InternalGetActionDescriptionString() const
{
    const Text key = kvr_format(
        "kvExecuteMacroAsynchronously%dParameter%dTitleFormat", int( mAsynchronously ), int( mUseParameter ) );
    return kvr_localizedFormat( key, kvr_macroName( mMacroUID ), kvr_excerpt( mParameter ) );
}

// Mark Macro

void AMarkMacro::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "MacroUID", mMacroUID, { .mIsUID = true } );
    inVisitor.Name( "MacroAction", mAction );
}

void AMarkMacro::UpdateForPasteOrAdd()
{
    FollowMapping( mMacroUID, "mMacroUID" );
}

Text AMarkMacro::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat(
        kvr_format( "kvMarkMacro%@DescriptionFormat", StoredName( mAction ) ), kvr_macroName( mMacroUID ) );
}

// Set Macro Enable

void ASetMacroEnable::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "Action", mAction );
    inVisitor.Text( "MacroUID", mMacroUID, { .mIsUID = true } );
}

void ASetMacroEnable::UpdateForPasteOrAdd()
{
    FollowMapping( mMacroUID, "mMacroUID" );
}

Text ASetMacroEnable::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat(
        kvr_format( "kvSetMacroEnable%@DescriptionFormat", StoredName( mAction ) ), kvr_macroName( mMacroUID ) );
}

// Macro Group Toggle

void AMacroGroupToggle::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "MacroGroupUID", mMacroGroupUID, { .mIsUID = true } );
    inVisitor.Name( "ToggleMode", mMode );
    inVisitor.Boolean( "DisplayToggle", mDisplayToggle );
}

void AMacroGroupToggle::UpdateForPasteOrAdd()
{
    FollowMapping( mMacroGroupUID, "mMacroGroupUID" );
}

Text AMacroGroupToggle::InternalGetActionDescriptionString() const
{
    return kvr_localizedFormat( kvr_format( "kvMacroGroupToggle%@DescriptionFormat", StoredName( mMode ) ),
        kvr_macroGroupName( mMacroGroupUID ) );
}

// Quick Macro

AQuickMacro::AQuickMacro() : mUID( std::make_shared<MUIDObject>() ) {}

void AQuickMacro::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Integer( "KeyCode", mKeyCode );
    inVisitor.Integer( "Modifiers", mModifiers );
    inVisitor.Boolean( "EnableRepeat", mEnableRepeat );
    inVisitor.Boolean( "AddToMacroPalette", mAddToMacroPalette );
    inVisitor.Boolean( "AddToStatusMenu", mAddToStatusMenu );
    XText uid = mUID->GetUID();
    inVisitor.Text( "QuickMacroUID", uid, { .mIsUID = true } );
    if ( not inVisitor.IsReading() or uid.Equals( mUID->GetUID().GetText() ) )
        return;
    if ( not IsEmpty( uid ) and not MUIDObject::UIDInUse( uid ) )
        mUID->SetUID( uid );
    else // a copy whose original is still there, say, on its way to being pasted
        inVisitor.NoteRepair( "QuickMacroUID",
            IsEmpty( uid ) ? u"an empty UID" : u"another object of this file holds this UID",
            IsEmpty( uid ) ? MLoadRule::kUIDAdded : MLoadRule::kUIDReplaced );
}

void AQuickMacro::UpdateForPasteOrAdd()
{
    mUID = std::make_shared<MUIDObject>();
}

Text AQuickMacro::InternalGetActionDescriptionString() const
{
    if ( mKeyCode == kNoKeyCode )
        return GetActionTitle();
    return kvr_localizedFormat( u"kvQuickMacroDescriptionFormat", kvr_keystrokeText( mKeyCode, mModifiers ) );
}

void ATriggerByName::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "InitialSearch", mInitialSearch );
    mAllowed.DescribeFields( inVisitor, "Allowed", "Macros" );
}

Text ATriggerByName::InternalGetActionDescriptionString() const
{
    if ( mInitialSearch.IsEmpty() )
        return GetActionTitle();
    return kvr_localizedFormat( u"kvTriggerByNameDescriptionFormat", TextView( kvr_excerpt( mInitialSearch ) ) );
}
