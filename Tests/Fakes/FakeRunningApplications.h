// Processes that a test makes: each with its number, its executable and the way it takes being asked to quit. Time is
// turned by whoever waits, through Wait, so a process quits in the middle of being waited for.
#pragma once

#include "Platform/RunningApplications.h"

#include <algorithm>

class FakeRunningApplication final : public XRunningApplication
{
public:
    FakeRunningApplication( std::int64_t inNumber, std::filesystem::path inExecutable )
        : mNumber( inNumber ),
          mExecutable( std::move( inExecutable ) )
    {}

    [[nodiscard]] std::int64_t ProcessIdentifier() const override { return mNumber; }
    [[nodiscard]] std::filesystem::path ExecutablePath() const override { return mExecutable; }
    [[nodiscard]] bool IsRunning() const override { return mIsRunning; }
    void terminate() override
    {
        mCalls += "terminate ";
        mIsQuitting = true;
    }
    void forceTerminate() override
    {
        mCalls += "forceTerminate ";
        mIsRunning = false;
    }

    /// Time goes on by one wait: a process that was asked to quit does so after its number of them.
    void Tick()
    {
        if ( mIsQuitting and mTicksToQuit-- <= 0 )
            mIsRunning = false;
    }

    const std::int64_t mNumber;
    std::filesystem::path mExecutable;
    bool mIsRunning = true, mIsQuitting = false;
    int mTicksToQuit = 3;
    std::string mCalls; ///< the signals that reached it
};

class FakeRunningApplications final : public XRunningApplications
{
public:
    FakeRunningApplication& Run( std::int64_t inNumber, std::filesystem::path inExecutable )
    {
        return *mProcesses.emplace_back(
            std::make_shared<FakeRunningApplication>( inNumber, std::move( inExecutable ) ) );
    }
    void Tick()
    {
        ++mTicks;
        for ( const auto& process : mProcesses )
            process->Tick();
    }

    [[nodiscard]] std::vector<std::shared_ptr<XRunningApplication>> RunningApplications(
        TextView inBundleIdentifier ) const override
    {
        std::vector<std::shared_ptr<XRunningApplication>> running;
        for ( const auto& process : mProcesses )
        {
            if ( inBundleIdentifier == mBundleIdentifier and process->mIsRunning )
                running.push_back( process );
        }
        return running;
    }
    [[nodiscard]] bool ProcessExists( std::int64_t inNumber ) const override
    {
        return std::any_of( mProcesses.begin(), mProcesses.end(),
            [&]( const auto& inProcess ) { return inProcess->mNumber == inNumber and inProcess->mIsRunning; } );
    }
    [[nodiscard]] std::optional<std::filesystem::path> EngineExecutable() const override { return mEngine; }
    [[nodiscard]] std::filesystem::path OwnExecutable() const override { return mOwn; }
    [[nodiscard]] std::optional<Text> Launch( const std::filesystem::path& inExecutable ) override
    {
        mLaunched.push_back( inExecutable );
        return mLaunchFailure;
    }

    Text mBundleIdentifier = u"com.tessarine.korvalen.engine"; ///< of all of them
    std::optional<std::filesystem::path> mEngine;
    std::filesystem::path mOwn;
    std::vector<std::shared_ptr<FakeRunningApplication>> mProcesses;
    std::vector<std::filesystem::path> mLaunched;
    std::optional<Text> mLaunchFailure;
    int mTicks = 0;
};
