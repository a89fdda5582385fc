#include "App/EditorHost.h"

EditorHost::EditorHost() = default;

EditorHost::~EditorHost() = default;

void EditorHost::RunMainLoop( std::function<void()> )
{
    mLoop = std::make_unique<XMainLoop>();
    mLoop->Run();
    mLoop.reset();
}

void EditorHost::StopMainLoop()
{
    if ( mLoop )
        mLoop->Stop();
}
