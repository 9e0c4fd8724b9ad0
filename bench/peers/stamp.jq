# The stamp on a sub-agent's call of the memory service's tools, as a jq filter: jq -c -f stamp.jq
if type == "object"
  and (.tool_name | type == "string" and startswith("mcp__quillstead__"))
  and (.tool_input | type == "object")
  and (.agent_id | type == "string" and test("\\S"))
then
  {hookSpecificOutput: {
    hookEventName: "PreToolUse",
    updatedInput: (.tool_input + {_quillstead_subagent: .agent_id})}}
else
  {}
end
