// The industry symbols of the outside vendor, in the vendor's order, which decides between equal ids.
// Tests: tests/fintext/patterned_text_test.cpp.

#include <algorithm>
#include <iterator>

#include "fintext/financial_text.h"

namespace {

struct IndustrySymbol {
    std::int32_t id;  // -1 for a symbol without an industry
    const char* symbol;
};

constexpr IndustrySymbol industrySymbols[] = {
    {452, "SP__RA"}, {-1, "SP__PH"},  {175, "SP__SV"}, {217, "SP__FW"}, {-1, "SP__CA"},  {110, "SP__A"},
    {605, "SP__AI"}, {115, "SP__AL"}, {120, "SP__AU"}, {135, "SP__AT"}, {140, "SP__BB"}, {145, "SP__BS"},
    {155, "SP__BM"}, {195, "SP__AC"}, {205, "SP__CM"}, {210, "SP__CP"}, {215, "SP__CT"}, {285, "SP__D"},
    {220, "SP__EE"}, {230, "SP__EI"}, {845, "SP__PL"}, {250, "SP__FX"}, {265, "SP__GO"}, {165, "SP__CD"},
    {167, "SP__CH"}, {395, "SP__OS"}, {345, "SP__MD"}, {180, "SP__CE"}, {185, "SP__CS"}, {360, "SP__MM"},
    {245, "SP__E"},  {190, "SP__BE"}, {-1, "SP__OC"},  {385, "SP__OD"}, {400, "SP__PA"}, {410, "SP__P"},
    {150, "SP__B"},  {415, "SP__PN"}, {620, "SP__TM"}, {-1, "SP__RC"},  {430, "SP__DS"}, {440, "SP__FC"},
    {445, "SP__GM"}, {-1, "SP__SC"},  {455, "SP__S"},  {320, "SP__SO"}, {460, "SP__ST"}, {435, "SP__RD"},
    {300, "SP__MP"}, {470, "SP__TO"}, {615, "SP__TK"}, {705, "SP__UE"}, {710, "SP__NG"}, {810, "SP__NB"},
    {815, "SP__RB"}, {840, "SP__SL"}, {830, "SP__ML"}, {835, "SP__PI"}, {310, "SP__HH"}, {405, "SP__PC"},
    {305, "SP__H"},  {420, "SP__RT"}, {240, "SP__EN"}, {270, "SP__HT"}, {715, "SP__TN"}, {225, "SP__ED"},
    {355, "SP__MI"}, {280, "SP__HD"}, {850, "SP__FM"}, {370, "SP__OE"}, {330, "SP__IS"}, {-1, "SP__EC"},
    {-1, "SP__HX"},  {-1, "SP__BC"},  {463, "SP__TC"}, {315, "SP__HP"}, {325, "SP__HW"}, {160, "SP__CF"},
    {-1, "SP__IC"},  {380, "SP__OP"}, {403, "SP__PG"}, {458, "SP__SP"}, {822, "SP__IB"}, {287, "SP__HC"},
    {-1, "SP__BA"},  {-1, "SP__CN"},  {-1, "SP__CC"},  {-1, "SP__CR"},  {112, "SP__AG"}, {357, "SP__MS"},
    {462, "SP__TW"}, {262, "SP__GL"}, {426, "SP__RI"}, {449, "SP__RU"}, {456, "SP__SA"}, {467, "SP__SM"},
    {459, "SP__TH"}, {382, "SP__PP"}, {289, "SP__RM"}, {292, "SP__SS"}, {147, "SP__BT"}, {187, "SP__NT"},
    {188, "SP__PE"}, {222, "SP__ET"}, {247, "SP__ES"}, {454, "SP__SY"}, {453, "SP__DP"}, {203, "SP__CJ"},
};

constexpr std::size_t industrySymbolCount = 108;
static_assert(std::size(industrySymbols) == industrySymbolCount);

}  // namespace

char* getInduSymFromID(std::int32_t id) {
    const auto* const row = std::find_if(std::begin(industrySymbols), std::end(industrySymbols),
                                         [id](const IndustrySymbol& symbol) { return symbol.id == id; });
    return row == std::end(industrySymbols) ? nullptr : const_cast<char*>(row->symbol);
}
