# Prints what the program tests/debug/printed_values.cpp has made.
set debuginfod enabled off
set width 0
set print elements 200

define see
  echo $arg0 =\040
  output $arg0
  echo \n
end

echo ---\n
see values
python
for name in ("block", "list", "multi", "*record.root", "record", "*record.fields", "*multi.payload.multi",
             "*multi.payload.multi->nodes", "string", "buffer", "date", "lost", "circle", "tooMany",
             "badString", "longText", "owned", "view", "noView"):
    gdb.execute("see " + name)
end
set print elements 3
see many
set print elements unlimited
python print(gdb.parse_and_eval("many").format_string().count("tagLong 100000"), "of many are shown")
