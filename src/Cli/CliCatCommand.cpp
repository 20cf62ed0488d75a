#include "Cli/CliCommandSet.h"
#include "Cli/CliSession.h"
#include "Document/DBNote.h"
#include "Shared/Base/TextConv.h"
#include "Shared/RichText/HtmlWriter.h"
#include "Shared/RichText/PlainTextWriter.h"
#include "Shared/RichText/RtfWriter.h"

#include <ostream>

SCliCommand CatCommand()
{
    SCliCommand command{
        "cat", "cat FILE NOTE [--format txt|rtf|html]", "Print a note's text.", {"--format"}, {}};
    command.run = [command](const SCliArgs& args, std::ostream& out, std::ostream& err)
    {
        if (!HasArgCount(args, 2, command, err))
            return int(CliBadUsage);
        const std::string format = args.Value("--format", "txt");
        if (format != "txt" && format != "rtf" && format != "html")
        {
            err << "quillarium-cli: unknown format '" << format << "'\n";
            return int(CliBadUsage);
        }
        CCliSession session(args, err);
        if (!session.Open(args.positional[0]))
            return int(CliFailure);
        CItem* item = session.FindItem(args.positional[1]);
        auto* note = dynamic_cast<CDBNote*>(item);
        CRichTextDocument* text = note ? note->GetRichText() : nullptr;
        if (!text)
        {
            if (item)
                err << "quillarium-cli: '" << args.positional[1] << "' is not a readable note\n";
            return int(CliFailure);
        }
        const SFontDescription& font = args.noteFont;
        std::u16string result;
        if (format == "rtf")
            result = ToRtf(*text, font);
        else if (format == "html")
            result = ToHtml(*text, note->GetCaption(), font);
        else
            result = ToPlainText(*text);
        if (args.json)
            out << "{\"caption\":\"" << JsonEscape(CaptionOf(*note)) << "\",\"format\":\"" << format
                << "\",\"text\":\"" << JsonEscape(Utf16ToUtf8(result)) << "\"}\n";
        else
            out << Utf16ToUtf8(result) << (format == "txt" ? "\n" : "");
        return int(CliSuccess);
    };
    return command;
}
