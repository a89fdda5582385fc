#include "Triggers/THIDTrigger.h"

#include "Actions/HFieldVisitors.h"
#include "Triggers/TriggerModifiers.h"
#include "Utility/Text/Localization.h"
#include "XCAF/XErrorHandler.h"
#include "XCAF/XException.h"

void HIDElement::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Text( "ElementName", mName, { .mRequiredAs = "name" } );
    inVisitor.Text( "ElementShortName", mShortName, { .mWhenMissing = u"X" } );
    inVisitor.Boolean( "ElementStreamDeck", mIsStreamDeck );
    inVisitor.Integer( "ElementVendorID", mVendorID, { .mRequiredAs = "vendorID" } );
    inVisitor.Integer( "ElementProductID", mProductID, { .mRequiredAs = "productID" } );
    inVisitor.Integer( "ElementDeviceUsagePage", mDeviceUsagePage, { .mRequiredAs = "deviceUsagePage" } );
    inVisitor.Integer( "ElementDeviceUsage", mDeviceUsage, { .mRequiredAs = "deviceUsage" } );
    inVisitor.Integer( "ElementUsagePage", mUsagePage, { .mRequiredAs = "usagePage" } );
    inVisitor.Integer( "ElementUsage", mUsage, { .mRequiredAs = "usage" } );
    inVisitor.Integer( "ElementCookie", mCookie, { .mRequiredAs = "cookie" } );
    inVisitor.Integer( "ElementValue", mValue, { .mRequiredAs = "value" } );
}

void THIDTrigger::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Boolean( "UseModifiers", mUseModifiers );
    DescribeTriggerModifiers( inVisitor, "Modifiers", mModifiers );
    inVisitor.Name( "FireType", mFireType );
    inVisitor.Integer( "TapCount", mTapCount );
    // An element is read whole or not at all, so LoadSubclassFromDictionary reads it.
    if ( not inVisitor.IsReading() )
        mElement.DescribeFields( inVisitor );
}

void THIDTrigger::LoadSubclassFromDictionary( const XPlistDictionary& inDictionary )
{
    TBaseTrigger::LoadSubclassFromDictionary( inDictionary );
    SetElementAndNameFromDictionary( inDictionary );
}

void THIDTrigger::SetElementAndNameFromDictionary( const XPlistDictionary& inDictionary )
{
    mElement = {};
    try
    {
        HReadingVisitor visitor( inDictionary );
        HIDElement element;
        element.DescribeFields( visitor );
        mElement = std::move( element );
    }
    catch ( const XException& )
    {
        XErrorHandler::PrivateMaybeLogFormat( "always", "THIDTrigger::SetElementAndNameFromDictionary exception" );
    }
}

bool THIDTrigger::TriggerIsUseless() const
{
    return mElement.mVendorID == 0 and mElement.mProductID == 0 and not mElement.mIsStreamDeck;
}

Text THIDTrigger::WithModifiers( const XText& inName ) const
{
    return ( mUseModifiers ? kvr_modifierGlyphs( mModifiers ) : Text() ) + inName.GetText();
}

Text THIDTrigger::GetDescription() const
{
    return kvr_localizedFormat(
        KeyFireTypeTextKey( u"tHIDTrigger", mFireType, mTapCount ), WithModifiers( mElement.mName ), mTapCount );
}

Text THIDTrigger::GetShortDescription() const
{
    return kvr_localizedFormat( u"tHIDTriggerShortDescFormat", WithModifiers( mElement.mShortName ) );
}
