-- Inserts a plug-in into the track of a session, as its only one, and chooses one of its presets.
--   ardour7-lua ardour_insert.lua FOLDER NAME TYPE ID PRESET [PARAMETER=VALUE ...]
-- TYPE is a name in ARDOUR.PluginType, ID what that type calls a plug-in.
local folder, name, kind, id, preset = arg[1], arg[2], arg[3], arg[4], arg[5]

AudioEngine:set_backend("None (Dummy)", "Unit-Test", "")
local session = load_session(folder, name)
assert(session, "Ardour doesn't open the session")
local track = session:route_by_name("Voice")
local processor = ARDOUR.LuaAPI.new_plugin(session, id, ARDOUR.PluginType[kind], "")
assert(not processor:isnil(), "Ardour doesn't find the plug-in " .. id)
assert(track:add_processor_by_index(processor, 0, nil, true) == 0, "Ardour refuses the plug-in")

local insert = processor:to_insert()
local plugin = insert:plugin(0)
local chosen = plugin:preset_by_label(preset)
assert(chosen and chosen.valid, "the plug-in has no preset " .. preset)
assert(plugin:load_preset(chosen), "the plug-in doesn't take its preset " .. preset)
for i = 6, #arg do
  local wanted, value = arg[i]:match("(.*)=(.*)")
  local control = 0  -- counts the plug-in's controls, its outputs included
  local found = false
  for n = 0, plugin:parameter_count() - 1 do
    if plugin:parameter_is_control(n) then
      if plugin:parameter_is_input(n) and plugin:parameter_label(n) == wanted then
        found = ARDOUR.LuaAPI.set_plugin_insert_param(insert, control, tonumber(value))
      end
      control = control + 1
    end
  end
  assert(found, "the plug-in has no parameter " .. wanted)
end
sleep(0.5)  -- until an LV2 plug-in has had its ports' values
session:save_state("", false, false, false, false, false)
print("latency=" .. insert:signal_latency() .. " instances=" .. insert:get_count())
plugin, insert, processor, track, session = nil, nil, nil, nil, nil
collectgarbage()
close_session()
quit()
