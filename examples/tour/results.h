// How the results of the families are shown: on the terminal, as a page, for machines.
#pragma once

#include <span>
#include <string>

#include "tour/family.h"

namespace jex::tour {

// The tables of one family on standard output.
void print(const Result& result);

// One row for each family.
void print_summary(std::span<const Result> results);

// "4.32 GFLOP/s, product"
std::string in_words(const Rate& rate);

// The findings, and behind them the rates.
std::vector<Fact> outcome_of(const Report& report);

// What the errors and bounds of the checks are.
extern const char* const unit_note;

// One self-contained HTML document: the summary, each family's tables, its pictures in place.
std::string page(std::span<const Result> results);

// {"threads": ., "families": [{"family": ., "checks": [..], "rates": [..], ..}, ..]}
std::string json(std::span<const Result> results);

}  // namespace jex::tour
