CREATE TABLE contacts (
    id       INTEGER PRIMARY KEY,
    name     TEXT NOT NULL,
    company  TEXT,
    email    TEXT,
    phone    TEXT,
    city     TEXT,
    born     DATE
);

CREATE TABLE notes (
    id       INTEGER PRIMARY KEY,
    contact  INTEGER NOT NULL REFERENCES contacts (id),
    written  TIMESTAMP NOT NULL,
    body     TEXT NOT NULL
);

INSERT INTO contacts (id, name, company, email, phone, city, born) VALUES
    (1, 'Ada Brandström',    'Fjord & Sons',        'ada@fjord.example',      '+46 8 555 0101',   'Stockholm',  '1984-02-29'),
    (2, 'Benoît Lefèvre',    'Atelier du Quai',     'benoit@quai.example',    '+33 1 55 50 12 34', 'Paris',     '1971-07-14'),
    (3, 'Chidi Okonkwo',     'Lagoon Logistics',    'chidi@lagoon.example',   '+234 1 555 0199',  'Lagos',      '1990-11-03'),
    (4, 'Dörte Weiß',        'Weiß Uhren GmbH',     'doerte@weiss.example',   '+49 30 5550 123',  'Berlin',     '1962-05-01'),
    (5, 'Ewa Żółkiewska',    NULL,                  'ewa@poczta.example',     '+48 22 555 01 77', 'Warszawa',   '1999-12-31'),
    (6, 'Finn O''Malley',    'O''Malley "Boats"',   'finn@boats.example',     '+353 1 555 0142',  'Dublin',     NULL),
    (7, '中村 さくら',        '桜書店',               'sakura@shoten.example',  '+81 3 5550 0188',  '東京',        '1987-04-09'),
    (8, 'Helena Papadaki',   'Nisos Travel',        NULL,                     '+30 21 0555 0160', 'Αθήνα',      '1978-08-15');

INSERT INTO notes (id, contact, written, body) VALUES
    (1, 1, '2024-01-08 09:15:00', 'Wants the offer for the boathouse by Friday.'),
    (2, 1, '2024-01-12 16:40:00', 'Offer sent. She will call back after the 20th.'),
    (3, 2, '2024-02-01 11:05:00', 'Prefers to be written to in French.'),
    (4, 3, '2024-02-14 08:30:00', 'New address: 14 Marina Road, 3rd floor.'),
    (5, 4, '2024-03-04 14:20:00', 'Clock no. 7 needs a new spring; estimate 120 €.'),
    (6, 6, '2024-03-17 10:00:00', 'Said: "Not before Easter."'),
    (7, 7, '2024-04-02 17:55:00', '次回は10時から。'),
    (8, 8, '2024-05-21 12:45:00', 'Ferry timetable for June is on the shared drive.');
