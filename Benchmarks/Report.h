// The console report of Google Benchmark with a table of ratios behind it. Rows are named
// SUBJECT/WHO/MACROS; those of one subject and size are compared, "ours" with each other.
#pragma once

#include <benchmark/benchmark.h>
#include <map>
#include <string>

class RatioReporter final : public benchmark::ConsoleReporter
{
public:
    RatioReporter();
    void ReportRuns( const std::vector<Run>& inRuns ) override;
    void PrintRatios() const;

private:
    // Subject and size, then who, to bytes a second.
    std::map<std::string, std::map<std::string, double>> mRates;
};
