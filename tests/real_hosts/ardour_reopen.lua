-- Opens a session as it was left, lists the parameters of its track's plug-in, and saves it.
--   ardour7-lua ardour_reopen.lua FOLDER NAME
AudioEngine:set_backend("None (Dummy)", "Unit-Test", "")
local session = load_session(arg[1], arg[2])
assert(session, "Ardour doesn't open the session")
local processor = session:route_by_name("Voice"):nth_plugin(0)
assert(not processor:isnil(), "the plug-in is missing from the session")
local insert = processor:to_insert()
local plugin = insert:plugin(0)
local control = 0  -- counts the plug-in's controls, its outputs included
for n = 0, plugin:parameter_count() - 1 do
  if plugin:parameter_is_control(n) then
    local is_shown = plugin:parameter_label(n) ~= "hidden"  -- as those are that stand for MIDI controllers in VST3
    if is_shown and plugin:parameter_is_input(n) then
      print(plugin:parameter_label(n) .. "=" .. ARDOUR.LuaAPI.get_plugin_insert_param(insert, control, true))
    end
    control = control + 1
  end
end
print("latency=" .. insert:signal_latency())
sleep(0.5)  -- until an LV2 plug-in has had its ports' values
session:save_state("", false, false, false, false, false)
plugin, insert, processor, session = nil, nil, nil, nil
collectgarbage()
close_session()
quit()
