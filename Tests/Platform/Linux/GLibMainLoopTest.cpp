#include "Platform/Linux/GLibMainLoop.h"

#include "Platform/Linux/LinuxAlerts.h"

#include <gtest/gtest.h>

#include <csignal>
#include <stdexcept>
#include <string>

TEST( GLibMainLoop, BlocksRunInOrderAndOneFromAnotherThreadWakesTheLoop )
{
    GLibMainLoop loop;
    XWork& work = XWork::Current();
    std::string order;
    work.MainQueue()->Async( [&] {
        order += 'a';
        work.MainQueue()->Async( [&] { order += 'c'; } ); // not inside this one
        order += 'b';
    } );
    const auto queue = work.MakeSerialQueue( u"com.tessarine.korvalen.Test" );
    queue->After( 0.01, [&] {
        work.MainQueue()->Async( [&] {
            order += 'd';
            loop.Stop();
        } );
    } );
    loop.Run();
    EXPECT_EQ( order, "abcd" );
}

TEST( GLibMainLoop, AStopThatComesFirstEndsTheRunAndAnInnerRunEndsFirst )
{
    GLibMainLoop loop;
    loop.Stop();
    loop.Run();
    std::string order;
    XWork::Current().MainQueue()->Async( [&] {
        XWork::Current().MainQueue()->Async( [&] {
            order += "inner ";
            loop.Stop();
        } );
        loop.Run();
        order += "outer";
        loop.Stop();
    } );
    loop.Run();
    EXPECT_EQ( order, "inner outer" );
}

TEST( GLibMainLoop, AnExceptionLeavesByRunAndTheNextBlocksStillCome )
{
    GLibMainLoop loop;
    bool hasRun = false;
    XWork::Current().MainQueue()->Async( [] { throw std::runtime_error( "out of a block" ); } );
    XWork::Current().MainQueue()->Async( [&] {
        hasRun = true;
        loop.Stop();
    } );
    EXPECT_THROW( loop.Run(), std::runtime_error );
    loop.Run();
    EXPECT_TRUE( hasRun );
}

TEST( GLibMainLoop, SignalsCallTheBlockOnTheMainThreadEachTime )
{
    GLibMainLoop loop;
    int signals = 0;
    loop.OnSignals( { SIGTERM, SIGHUP, SIGINT }, [&] {
        EXPECT_TRUE( XIsMainThread() );
        ++signals;
        loop.Stop();
    } );
    for ( const int number : { SIGTERM, SIGHUP, SIGINT, SIGTERM } )
    {
        const int before = signals;
        ASSERT_EQ( std::raise( number ), 0 );
        loop.Run();
        EXPECT_EQ( signals, before + 1 ) << number;
    }
}

TEST( Alerts, ALineForTheTerminalCannotSteerIt )
{
    EXPECT_EQ( AlertLine( u"Title", u"Text" ), "korvalen: Title: Text\n" );
    EXPECT_EQ( AlertLine( u"", u"Text" ), "korvalen: Text\n" );
    EXPECT_EQ( AlertLine( u"A\x1b[31mB",
                   u"1\n2\r3\x9b"
                   u"4\x202E"
                   u"5" ),
        "korvalen: A [31mB: 1 2 3 4 5\n" );
    EXPECT_EQ( AlertLine( u"Ä", u"\U0001F600" ), "korvalen: Ä: \xF0\x9F\x98\x80\n" );
}
