#include "Actions/MediaActions.h"

#include "Actions/DescriptionText.h"

void AiTunesControl::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "Command", mCommand );
    inVisitor.Text( "Argument", mArgument );
}

std::vector<Text> AiTunesControl::GetAddActionByNameExtraSearchString() const
{
    return { u"iTunes" };
}

Text AiTunesControl::InternalGetActionDescriptionString() const
{
    return kvr_commandDescription( u"kviTunesControl", StoredName( mCommand ), mArgument );
}

void AQuickTimePlayerControl::DescribeFields( HFieldVisitor& inVisitor )
{
    inVisitor.Name( "Command", mCommand );
    inVisitor.Text( "Argument", mArgument );
}

Text AQuickTimePlayerControl::InternalGetActionDescriptionString() const
{
    return kvr_commandDescription( u"kvQuickTimePlayerControl", StoredName( mCommand ), mArgument );
}
