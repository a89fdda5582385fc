#include "Actions/ActionContainers.h"

bool HOneListAction::IsEmptyOfActions() const
{
    return mActions.GetList().Empty();
}

void HOneListAction::DoForEverySubActionList( const HActionList::ListBlock& inBlock ) const
{
    inBlock( [] { return Text(); }, mActions.GetList() );
}

void HOneListAction::DescribeActions( HFieldVisitor& inVisitor )
{
    inVisitor.Actions( "Actions", "ActionListDisclosed", mActions );
}
