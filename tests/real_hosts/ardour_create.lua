-- Creates a session with a track that sends its sound to the master bus.
--   ardour7-lua ardour_create.lua FOLDER NAME RATE CHANNELS
local folder, name, rate, channels = arg[1], arg[2], tonumber(arg[3]), tonumber(arg[4])

AudioEngine:set_backend("None (Dummy)", "Unit-Test", "")
local session = create_session(folder, name, rate)
assert(session, "Ardour doesn't create the session")
local tracks = session:new_audio_track(channels, 2, nil, 1, "Voice", ARDOUR.PresentationInfo.max_order,
                                       ARDOUR.TrackMode.Normal, true)
-- A thread of its own connects it.
local port = tracks:front():output():nth(0)
for _ = 1, 100 do
  if port:connected() then break end
  sleep(0.05)
end
assert(port:connected(), "Ardour doesn't connect the track")
session:save_state("", false, false, false, false, false)
port, tracks, session = nil, nil, nil
collectgarbage()
close_session()
quit()
