// A FRU as a text in an editor: input is a byte that says whether the image's checksums are put right, the image behind
// its size, and lines that take the place of others of its text or follow it.
#include "fuzz/input.h"
#include "tools/fructl/edit.h"
#include "tools/fructl/edittext.h"
#include "tools/fructl/toolerror.h"

namespace {

using namespace Fructl;
using Frudata_Fuzz::CInput;
using Frudata_Fuzz::Require;

std::vector<std::string> Words(CEditedText& text) {
    std::vector<std::string> words = text.Removals();
    for (const CEditedText::LINE& line : text.Lines())
        if (std::string word = text.Word(line); !word.empty())
            words.push_back(std::move(word));
    return words;
}

std::string Edited(const std::string& text, CInput& input) {
    std::vector<std::string> lines;
    for (std::size_t begin = 0; begin < text.size(); begin = text.find('\n', begin) + 1)
        lines.push_back(text.substr(begin, text.find('\n', begin) - begin + 1));
    while (!input.IsEmpty()) {
        const std::size_t place = input.Byte();
        std::string line = input.Text(input.Byte());
        if (place < lines.size())
            lines[place] = std::move(line);
        else
            lines.push_back(std::move(line));
        if (place % 2 == 0)
            lines[std::min(place, lines.size() - 1)] += "\n";
    }
    std::string edited;
    for (const std::string& line : lines)
        edited += line;
    return edited;
}

/// A text that was set in a field is there.
void CheckPlan(CEditedText& text, const CONTENTS& contents, const FRU& after) {
    Require(after.IsSound() || !contents.fru.IsSound());
    const bool keepsLanguage = std::none_of(text.Lines().begin(), text.Lines().end(), [&](const auto& line) {
        return line.name.ends_with(".language") && !text.Word(line).empty();
    });
    for (const CEditedText::LINE& line : text.Lines()) {
        const auto field = FruImage::ParseFieldName(line.name);
        if (!keepsLanguage || !field || field->part != FIELD_NAME::FIXED || text.Word(line).empty())
            continue;
        const FIELD* now = after.Find(*field);
        Require(now != nullptr);
        if (now->kind == FIELD_KIND::TEXT && now->encoding != FruImage::ENCODING::BINARY)
            Require(now->text == line.value);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const UINT8* data, std::size_t size) {
    CInput input(data, size);
    const bool repairs = input.Byte() % 4 != 0;
    BYTES image = input.Take(input.Word());
    if (repairs)
        Frudata_Fuzz::RepairImage(image);
    const CONTENTS contents{{SOURCE::IMAGE, "image", {}, {}}, image, FruImage::Parse(image)};
    const std::string shown = EditText(contents);
    CEditedText same(shown, contents);
    Require(same.Problems().empty() && same.Text() == shown && Words(same).empty());
    CEditedText text(Edited(shown, input), contents);
    CEditedText again(text.Marked("one line"), {});
    Require(again.Text() == text.Text() && again.Problems() == text.Problems());
    try {
        const std::vector<std::string> words = Words(text);
        if (!words.empty() && text.Problems().empty())
            CheckPlan(text, contents, FruImage::Parse(MakePlan(contents, ParseEdits(words, {}), {}).bytes));
    } catch (const CToolError&) {
        // The line is marked.
    }
    return 0;
}
