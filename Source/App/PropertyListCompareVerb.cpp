#include "App/PropertyListCompareVerb.h"

#include "App/DifferenceText.h"

#include <CLI/CLI.hpp>

PropertyListCompareVerb::PropertyListCompareVerb( CLI::App& ioCommand ) : Verb( ioCommand )
{
    ioCommand.add_option( "OLD", mOldPath, "A property list, or JSON; “-” is standard input" )
        ->required()
        ->type_name( "" );
    ioCommand.add_option( "NEW", mNewPath, "The one to compare it with" )->required()->type_name( "" );
    ioCommand.add_flag( "--json", mJSON, "Print the differences as JSON, with both values whole" );
    ioCommand.footer( "A line for each difference: added, removed or changed, the path, the values shortened.\n"
                      "Elements of arrays are aligned: up to 1,000 by 1,000 fully, beyond that around those that\n"
                      "are equal and single; where one moved, both paths show. Files of different form are\n"
                      "compared by what they say. Status 0: equal; 1: different.\n"
                      "Example: korvalen plist compare \"Korvalen Macros.plist\" Backup.plist" );
}

ExitStatus PropertyListCompareVerb::Run( VerbContext& ioContext )
{
    Output& output = ioContext.mOutput;
    if ( mOldPath == "-" and mNewPath == "-" )
    {
        output.Complain( "standard input can only be one of the two; name a file for the other" );
        return ExitStatus::kWrongUsage;
    }
    const PropertyListInput old = ReadPropertyListFile( ioContext.mInput, mOldPath );
    const PropertyListInput now = ReadPropertyListFile( ioContext.mInput, mNewPath );
    const XPlistDifferences differences = FindDifferences( old.mValue, now.mValue );
    ShowDifferences( differences, mJSON, output );
    return differences.mCount == 0 ? ExitStatus::kDone : ExitStatus::kFailed;
}
