CREATE TABLE planets (name TEXT, moons NUMERIC, discovered DATE);
INSERT INTO planets VALUES ('Mars', 2, NULL), ('Uranus', 28, '1781-03-13'), ('Neptune', 16, '1846-09-23');
