// MIT License. Placeholder until painting is written.
