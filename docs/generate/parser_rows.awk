# parser_rows.awk: writes tests/data/parser.tsv as tables of Markdown, with its comments as text.

function cell(text) {
    gsub(/\|/, "\\|", text)
    return "`" text "`"
}

BEGIN { FS = "\t" }

/^$/ { begun = 1; if (inTable || inText) print ""; inTable = inText = 0; next }
!begun { next }

/^#/ {
    if (inTable) print ""
    inTable = 0
    sub(/^# ?/, "")
    print
    inText = 1
    next
}

{
    if (!inTable) print (inText ? "\n" : "") "| Text | Is |\n|---|---|"
    inText = 0
    inTable = 1
    if ($2 == "unit") outcome = cell($3)
    else if ($2 == "std::invalid_argument") outcome = "refused: " cell($3)
    else outcome = "refused, `" $2 "`: " cell($3)
    print "| " cell($1) " | " outcome " |"
}
