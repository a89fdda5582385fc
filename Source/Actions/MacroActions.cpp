#include "Actions/MacroActions.h"

#include "Actions/DescriptionText.h"
#include "Macros/MMacroInsertion.h"
#include "Macros/MMacroSerializedObject.h"
#include "Utility/Text/Localization.h"
#include "XCAF/XErrorHandler.h"

void AExecuteMacro::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "MacroUID", mMacroUID, { .mRequiredAs = "macroUID", .mIsUID = true } );
    inVisitor.Boolean( "UseParameter", mUseParameter );
    inVisitor.Text( "Parameter", mParameter );
    inVisitor.Boolean( "Asynchronously", mAsynchronously );
}

void AExecuteMacro::UpdateForPasteOrAdd()
{
    XAssertText( not mMacroUID.IsNull(), "mMacroUID" );
    if ( not mMacroUID.IsNull() )
        mMacroUID = MMacroInsertion::GetMapping( mMacroUID );
}

std::vector<Text> AExecuteMacro::GetAddActionByNameExtraSearchString() const
{
    return { u"run", u"trigger" };
}

Text AExecuteMacro::InternalGetActionDescriptionString() const
{
    const Text key = kvr_format(
        "kvExecuteMacroAsynchronously%dParameter%dTitleFormat", int( mAsynchronously ), int( mUseParameter ) );
    const MMacroSerializedObject* macro = MMacroSerializedObject::FindObjectByUID( mMacroUID );
    const Text name = macro ? macro->GetUnambiguousName() : MMacroSerializedObject::GetUnknownUnambiguousName();
    return kvr_localizedFormat( key, TextView( name ), TextView( mParameter.GetText() ) );
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
