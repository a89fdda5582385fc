#include "Utility/Work/AsyncNSTask.h"

#include "Utility/Work/ChildProcess.h"
#include "Utility/Work/TaskLog.h"

#include <limits>

namespace
{
// What may wait for the main queue before the command's output is held back in its pipe.
constexpr std::size_t kMaxWaiting = std::size_t( 4 ) << 20;
} // namespace

// The side of the queue that reads. It holds the task, and goes with the last delivery.
struct AsyncNSTask::Reading final : XChildProcess::Handler, std::enable_shared_from_this<AsyncNSTask::Reading>
{
    void Output( std::string_view inBytes ) override { Deliver( inBytes, &AsyncNSTask::readPipe ); }
    void Error( std::string_view inBytes ) override
    {
        if ( mLogStdErr )
            mErrors.Add( inBytes );
        else
            Deliver( inBytes, &AsyncNSTask::errorPipe );
    }
    bool WantsMore() override
    {
        const auto hasRoom = [this] { return mWaiting < kMaxWaiting; };
        return hasRoom() or ( mWork->RunUntil( hasRoom ) and hasRoom() );
    }

    void Deliver( std::string_view inBytes, void ( AsyncNSTask::*inPipe )( std::string_view ) )
    {
        mWaiting += inBytes.size();
        mWork->MainQueue()->Async( [self = shared_from_this(), inPipe, bytes = std::string( inBytes )] {
            // The child only wakes to read on; its last output may be delivered when it has gone.
            if ( self->mWaiting.fetch_sub( bytes.size() ) >= kMaxWaiting )
                self->mChild->Wake();
            ( self->mTask.get()->*inPipe )( bytes );
        } );
    }

    void Run()
    {
        const XChildProcess::Limits limits{ {}, std::numeric_limits<std::size_t>::max() };
        const XChildProcess::End end = mChild->Communicate( mInput, *this, limits, mWork->Clock() );
        mErrors.Flush();
        mWork->MainQueue()->Async(
            [self = shared_from_this(), end] { self->mTask->Finish( end.mStatus, end.mBySignal ); } );
    }

    XWork* mWork = nullptr;
    std::shared_ptr<XQueue> mQueue;
    std::shared_ptr<AsyncNSTask> mTask;
    std::unique_ptr<XChildProcess> mChild;
    std::string mInput;
    bool mLogStdErr = false;
    TaskLog::ErrorLines mErrors;
    std::atomic<std::size_t> mWaiting{ 0 };
};

std::shared_ptr<AsyncNSTask> AsyncNSTask::initWithDelegate(
    std::weak_ptr<AsyncNSTaskDelegate> inDelegate, std::weak_ptr<void> inReceiver )
{
    std::shared_ptr<AsyncNSTask> task( new AsyncNSTask );
    task->mDelegate = std::move( inDelegate );
    task->mReceiver = std::move( inReceiver );
    return task;
}

AsyncNSTask::~AsyncNSTask() = default;

bool AsyncNSTask::launchWithCommand( TextView inCommand, const std::vector<Text>& inArguments, std::string inInput )
{
    XAssertText( not inCommand.empty(), "command" );
    XAssertText( not mReading and not mIsFinished, "!i_task" );
    if ( inCommand.empty() or mReading or mIsFinished )
        return false;

    XTaskEnvironment environment;
    environment.mParameters = executionParameters;
    if ( includeVariables )
    {
        environment.mVariables = includeVariables->CopyVariables( variableInstance );
        environment.mInstance = variableInstance;
    }
    XChildProcess::Command command{ UTF8FromText( inCommand ), {}, environment.Make( XTaskEnvironment::OfProcess() ),
        mergeStdErr };
    for ( const Text& argument : inArguments )
        command.mArguments.push_back( UTF8FromText( argument ) );

    std::string fault;
    auto child = XChildProcess::Start( command, fault );
    if ( not child )
    {
        XErrorHandler::PrivateMaybeLogFormat( "display", "Launch Task %@ %@ failed with exception %@", inCommand,
            TaskLog::Describe( inArguments ), TextFromUTF8( fault ) );
        tempScriptHolder = nullptr;
        return false;
    }
    mReading = std::make_shared<Reading>();
    mReading->mWork = &XWork::Current();
    mReading->mQueue = mReading->mWork->MakeSerialQueue( u"com.tessarine.korvalen.XTask" );
    mReading->mTask = shared_from_this();
    mReading->mChild = std::move( child );
    mReading->mInput = std::move( inInput );
    mReading->mLogStdErr = logStdErr;
    mReading->mQueue->Async( [reading = mReading] { reading->Run(); } );
    return true;
}

void AsyncNSTask::terminate()
{
    if ( mReading )
        mReading->mChild->Terminate();
}

void AsyncNSTask::readPipe( std::string_view inBytes )
{
    if ( const auto delegate = mDelegate.lock() )
        delegate->TaskOutput( *this, mReceiver.lock(), inBytes );
}

void AsyncNSTask::errorPipe( std::string_view inBytes )
{
    if ( const auto delegate = mDelegate.lock() )
        delegate->TaskError( *this, mReceiver.lock(), inBytes );
}

void AsyncNSTask::Finish( int inStatus, bool inBySignal )
{
    mStatus = inStatus;
    mBySignal = inBySignal;
    mIsFinished = true;
    XErrorHandler::PrivateMaybeLogFormat( "XTask", "AsyncNSTask terminated with status %d", inStatus );
    mReading = nullptr; // it holds us; the block that runs now holds it
    tempScriptHolder = nullptr;
    if ( const auto delegate = mDelegate.lock() )
        delegate->TaskFinished( *this, mReceiver.lock() );
}
